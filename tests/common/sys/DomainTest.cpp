// Membership, units and joins on the simulated machine, beyond what a request can show. What
// failing calls lead to is looked at where the whole module is.
#include "common/sys/Domain.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;
using testing::ElementsAreArray;
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

TEST(DomainMembership, IsAskedForAgainAtEveryCall) {
    Machine machine(MemberIn("East/Sales"));
    sys::Domain domain;
    EXPECT_TRUE(domain.IsDomainMember());
    machine->SetState(machine::DefaultState());
    EXPECT_EQ(machine.Run([&] { EXPECT_FALSE(domain.IsDomainMember()); }), Success());
    EXPECT_THAT(machine.Texts(), ElementsAreArray(MembershipCalls(false)));
    EXPECT_EQ(domain.Workgroup(), "WORKGROUP");
    // What cannot be asked stays as it was.
    for (const bool member : {false, true}) {
        machine->SetState(member ? machine::DefaultState() : MemberIn("West"));
        machine.Fail("LsaQueryInformationPolicy");
        EXPECT_EQ(domain.IsDomainMember(), member);
        machine.Fail("");
        machine->SetState(MemberIn("West"));
        EXPECT_TRUE(domain.IsDomainMember());
    }
    EXPECT_EQ(domain.DomainName(), "CORP");
}

TEST(DomainUnit, IsReadFromTheNameOfTheComputerObject) {
    machine::State unreachable = MemberIn("East/Sales");
    unreachable.domains[0].reachable = false;
    for (const machine::State& state : {MemberIn("East/Sales"), MemberIn(""), unreachable}) {
        const bool reachable = state.domains[0].reachable;
        const bool inUnit = reachable && state != MemberIn("");
        for (const bool asDn : {false, true}) {
            const std::string expected = !inUnit ? "" : asDn ? "OU=Sales,OU=East" : "East/Sales";
            Machine machine(state);
            sys::Domain domain;
            std::string out = "before";
            EXPECT_EQ(machine.Run([&] { EXPECT_EQ(&domain.GetOu(out, asDn), &out); }), Success());
            EXPECT_EQ(out, expected);
            std::vector<std::string> calls = MembershipCalls(true);
            calls.insert(calls.end(), reachable ? 2 : 1, "GetComputerObjectNameA format=1");
            EXPECT_THAT(machine.Texts(), ElementsAreArray(calls));

            machine->SetState(machine::DefaultState());
            EXPECT_EQ(machine.Run([&] { domain.GetOu(out, false); }), Success());
            EXPECT_EQ(out, expected) << "outside a domain it is the last one found";
            EXPECT_THAT(machine.Texts("GetComputerObjectNameA"), IsEmpty());
        }
    }
}

/// A domain whose account may do everything.
struct JoinersDomain : sys::Domain {
    JoinersDomain() { SetAccount("joiner", "Join-Me-1"); }
};

TEST(JoinWorkgroup, ResultIsTheUnjoinsUnlessThatIsZero) {
    for (const char* const plan :
         {"JoinDomainOrWorkgroup=1", "JoinDomainOrWorkgroup=0,UnjoinDomainOrWorkgroup=1"}) {
        Machine machine(MemberIn(""));
        machine.Fail(plan);
        EXPECT_EQ(JoinersDomain().JoinWorkgroup("LAB"), 1);
    }
    Machine machine(MemberIn(""));
    machine.Fail("JoinDomainOrWorkgroup=0xFFFFFFFF");
    EXPECT_EQ(machine.Run([] { JoinersDomain().JoinWorkgroup("LAB"); }),
              DomainFailure(" - JoinWorkgroup error", 735, 0, 0xFFFFFFFF));
    EXPECT_EQ(machine.Texts("ExecMethod").size(), 2U);
}

TEST(JoinDomain, FlagsFollowMembershipOptionAndAttempt) {
    struct Case {
        bool member;
        bool option;
        const char* results;
        std::vector<const char*> flags;
        Outcome outcome;
    };
    const Case cases[] = {
        {true, true, "#1=1", {"289"}, Success()},
        {false, true, "#1=2224,JoinDomainOrWorkgroup#2=1", {"257", "259"}, Success()},
        {false,
         false,
         "#1=5,JoinDomainOrWorkgroup#2=0x80070005",
         {"1", "3"},
         DomainFailure(" - JoinDomainAndOu error", 735, 2, 0x80070005)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.results);
        Machine machine(c.member ? MemberIn("") : machine::DefaultState());
        machine.Fail(std::string("JoinDomainOrWorkgroup") + c.results);
        EXPECT_EQ(machine.Run([&] {
            EXPECT_EQ(JoinersDomain().JoinDomainAndOu("other.example", "West", c.option), 1);
        }),
                  c.outcome);
        std::vector<std::string> flags;
        for (const machine::TraceEntry& entry : machine.Calls()) {
            if (entry.function == "Put" && ArgumentOf(entry, "name") == "FJoinOptions") {
                flags.push_back(ArgumentOf(entry, "value"));
            }
        }
        EXPECT_THAT(flags, ElementsAreArray(c.flags));
    }
}

}  // namespace
