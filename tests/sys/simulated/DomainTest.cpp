// Membership and units on the simulated machine: what is asked, and what is made of the answers.
#include "common/sys/Domain.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/sys/simulated/Machine.h"
#include "tests/sys/simulated/Members.h"

namespace {

using namespace sys_tests;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> MembershipCalls(bool member) {
    std::vector<std::string> calls = {"LsaOpenPolicy access=0x1",
                                      "LsaQueryInformationPolicy class=3", "LsaFreeMemory",
                                      "LsaQueryInformationPolicy class=12", "LsaFreeMemory"};
    if (!member) {
        calls.insert(calls.end(), {"NetWkstaGetInfo level=100", "NetApiBufferFree"});
    }
    calls.emplace_back("LsaClose");
    return calls;
}

TEST(DomainMembership, IsWhatThePolicySays) {
    struct Case {
        const char* name;
        machine::Membership membership;
        const char* faults;
        bool member;
        const char* domain;
        const char* dnsDomain;
        const char* workgroup;
    };
    const machine::Membership corp = machine::Membership::OfDomain("CORP", "corp.example");
    const machine::Membership lab = machine::Membership::OfWorkgroup("LAB");
    const Case cases[] = {
        {"member", corp, "", true, "CORP", "corp.example", ""},
        {"no DNS name", machine::Membership::OfDomain("OLD", ""), "", true, "OLD", "", ""},
        {"by its SID alone", corp, "LsaQueryInformationPolicy#2", true, "CORP", "", ""},
        {"by its DNS name alone", corp, "LsaQueryInformationPolicy#1", true, "", "corp.example",
         ""},
        {"workgroup", lab, "", false, "", "", "LAB"},
        {"both queries fail", corp, "LsaQueryInformationPolicy", false, "", "", "CORP"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        machine::State state = machine::DefaultState();
        state.membership = c.membership;
        Machine machine(state);
        machine.Fail(c.faults);
        sys::Domain domain;
        bool member = !c.member;
        EXPECT_EQ(machine.Run([&] { member = domain.IsDomainMember(); }), Success());
        EXPECT_EQ(member, c.member);
        EXPECT_EQ(domain.DomainName(), c.domain);
        EXPECT_EQ(domain.DnsDomainName(), c.dnsDomain);
        EXPECT_EQ(domain.Workgroup(), c.workgroup);
        if (*c.faults == '\0') {
            EXPECT_THAT(machine.Calls(), testing::ElementsAreArray(MembershipCalls(c.member)));
        }
        EXPECT_THAT(machine.Leaks(), IsEmpty());
    }
}

TEST(DomainMembership, IsAskedForAgainAtEveryCall) {
    Machine machine(MemberIn("East/Sales"));
    sys::Domain domain;
    EXPECT_TRUE(domain.IsDomainMember());
    machine::State left = machine::DefaultState();
    left.membership = machine::Membership::OfWorkgroup("LAB");
    machine->SetState(left);
    EXPECT_FALSE(domain.IsDomainMember());
    EXPECT_EQ(domain.Workgroup(), "LAB");
    // What cannot be asked stays as it was: here that it is no member.
    machine->SetState(MemberIn("East/Sales"));
    machine.Fail("LsaQueryInformationPolicy");
    EXPECT_FALSE(domain.IsDomainMember());
    machine.Fail("");
    EXPECT_TRUE(domain.IsDomainMember());
    machine.Fail("LsaQueryInformationPolicy");
    EXPECT_TRUE(domain.IsDomainMember());
    EXPECT_EQ(domain.DomainName(), "CORP");
}

TEST(DomainMembership, WithoutWorkstationInformationThePolicyStaysOpen) {
    Machine machine;
    machine.Fail("NetWkstaGetInfo");
    sys::Domain domain;
    bool member = true;
    EXPECT_EQ(machine.Run([&] { member = domain.IsDomainMember(); }), Success());
    EXPECT_FALSE(member);
    EXPECT_EQ(domain.Workgroup(), "");
    EXPECT_THAT(machine.Calls("LsaClose"), IsEmpty());
    EXPECT_THAT(machine.Leaks(), ElementsAre("LSA policy handle"));
}

TEST(DomainMembership, APolicyThatDoesNotOpenIsAnError) {
    for (const auto& [status, code] : {std::pair{0xC0000022U, ERROR_ACCESS_DENIED},
                                       std::pair{0xC0020017U, RPC_S_SERVER_UNAVAILABLE}}) {
        Machine machine;
        machine.Fail("LsaOpenPolicy=" + std::to_string(status));
        sys::Domain domain;
        EXPECT_EQ(
            machine.Run([&] { domain.IsDomainMember(); }),
            DomainFailure(" - IsDomainMember returned error ", 73,
                          static_cast<std::int32_t>(status), static_cast<std::uint32_t>(code)));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
    }
}

TEST(DomainUnit, IsReadFromTheNameOfTheComputerObject) {
    struct Case {
        machine::State state;
        const char* path;
        const char* dn;
    };
    machine::State unreachable = MemberIn("East/Sales");
    unreachable.domains[0].reachable = false;
    const Case cases[] = {
        {MemberIn("East/Sales"), "East/Sales", "OU=Sales,OU=East"},
        {MemberIn("West"), "West", "OU=West"},
        {MemberIn(""), "", ""},
        {unreachable, "", ""},
    };
    for (const Case& c : cases) {
        for (const bool asDn : {false, true}) {
            Machine machine(c.state);
            sys::Domain domain;
            std::string out = "before";
            const std::string* returned = nullptr;
            EXPECT_EQ(machine.Run([&] { returned = &domain.GetOu(out, asDn); }), Success());
            EXPECT_EQ(out, asDn ? c.dn : c.path);
            EXPECT_EQ(returned, &out);
            EXPECT_THAT(machine.Leaks(), IsEmpty());
            std::vector<std::string> calls = MembershipCalls(true);
            calls.insert(calls.end(), c.state.domains[0].reachable ? 2 : 1,
                         "GetComputerObjectNameA format=1");
            EXPECT_THAT(machine.Calls(), testing::ElementsAreArray(calls));
        }
    }
}

TEST(DomainUnit, OutsideADomainIsTheLastOneFound) {
    Machine machine(MemberIn("East/Sales"));
    sys::Domain domain;
    std::string out;
    domain.GetOu(out, true);
    machine->SetState(machine::DefaultState());
    out = "before";
    EXPECT_EQ(machine.Run([&] { domain.GetOu(out, false); }), Success());
    EXPECT_EQ(out, "OU=Sales,OU=East") << "as it was found, whatever form is asked for";
    EXPECT_THAT(machine.Calls("GetComputerObjectNameA"), IsEmpty());
    sys::Domain other;
    other.GetOu(out, false);
    EXPECT_EQ(out, "");
}

TEST(DomainUnit, ANameThatCannotBeReadIsAnError) {
    Machine machine(MemberIn("East/Sales"));
    machine.Fail("GetComputerObjectNameA#2=1355");
    sys::Domain domain;
    std::string out = "before";
    EXPECT_EQ(machine.Run([&] { domain.GetOu(out, false); }),
              DomainFailure("GetOu() failed calling GetComputerObjectName()", 247, 0, 1355));
    EXPECT_EQ(out, "");
}

}  // namespace
