// Joins and moves on the simulated machine: what is called with which flags, names and paths, and
// what comes out of it.
#include "common/sys/Domain.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "machine/model/Directory.h"
#include "tests/sys/simulated/Machine.h"
#include "tests/sys/simulated/Members.h"

namespace {

using namespace sys_tests;
using testing::ElementsAre;
using testing::IsEmpty;

/// The in-parameters of the calls of ExecMethod, in the order put, as "name=value, name=value".
std::vector<std::string> MethodCalls(const Machine& machine) {
    std::vector<std::string> calls;
    std::string parameters;
    for (const machine::TraceEntry& entry : machine.Entries()) {
        if (entry.function == "Put") {
            parameters += (parameters.empty() ? "" : " ") + ArgumentOf(entry, "name") + "=" +
                          ArgumentOf(entry, "value");
        } else if (entry.function == "ExecMethod") {
            calls.push_back(ArgumentOf(entry, "method") + " " + std::exchange(parameters, ""));
        }
    }
    return calls;
}

constexpr const char* kJoinWorkgroup =
    R"(JoinDomainOrWorkgroup Name="LAB" UserName="joiner" Password=*** AccountOU="" FJoinOptions=0)";

TEST(JoinWorkgroup, AMemberWithAnAccountLeavesItsDomainFirst) {
    struct Case {
        const char* name;
        machine::State state;
        const char* user;
        std::vector<std::string> calls;
    };
    machine::State flatOnly = MemberIn("");
    flatOnly.membership.dnsDomain = "";
    const auto unjoin = [](const std::string& account) {
        return "UnjoinDomainOrWorkgroup UserName=\"" + account + "\" Password=*** FUnjoinOptions=0";
    };
    const Case cases[] = {
        {"member", MemberIn(""), "joiner", {unjoin("corp.example\\joiner"), kJoinWorkgroup}},
        {"no DNS name", flatOnly, "joiner", {unjoin("CORP\\joiner"), kJoinWorkgroup}},
        {"no account",
         MemberIn(""),
         "",
         {R"(JoinDomainOrWorkgroup Name="LAB" UserName="" Password=*** AccountOU="" FJoinOptions=0)"}},
        {"no member", machine::DefaultState(), "joiner", {kJoinWorkgroup}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Machine machine(c.state);
        machine.Fail("UnjoinDomainOrWorkgroup=0,JoinDomainOrWorkgroup=0");
        sys::Domain domain;
        domain.SetAccount(c.user, "Join-Me-1");
        EXPECT_EQ(machine.Run([&] { domain.JoinWorkgroup("LAB"); }), Success());
        EXPECT_THAT(MethodCalls(machine), testing::ElementsAreArray(c.calls));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
    }
}

TEST(JoinWorkgroup, ResultIsTheUnjoinsUnlessThatIsZero) {
    struct Case {
        const char* unjoin;
        const char* join;
        Outcome outcome;
        int result;
        std::size_t methods;
    };
    const auto unjoining = [](std::uint32_t code, int line) {
        return DomainFailure(" - JoinWorkgroup error (unjoining domain)", line, 0, code);
    };
    const auto joining = [](std::uint32_t code, int line) {
        return DomainFailure(" - JoinWorkgroup error", line, 0, code);
    };
    const Case cases[] = {
        {"0", "0", Success(), 0, 2},
        {"1", "0", Success(), 1, 2},
        {"0", "1", Success(), 1, 2},
        {"1", "1", Success(), 1, 2},
        {"5", "0", unjoining(5, 728), -1, 1},
        {"256", "0", unjoining(256, 728), -1, 1},
        {"0x80070005", "0", unjoining(0x80070005, 735), -1, 1},
        {"0", "2691", joining(2691, 728), -1, 2},
        {"1", "2", joining(2, 728), -1, 2},
        {"0", "0xFFFFFFFF", joining(0xFFFFFFFF, 735), -1, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.unjoin) + ", " + c.join);
        Machine machine(MemberIn(""));
        machine.Fail("UnjoinDomainOrWorkgroup=" + std::string(c.unjoin) +
                     ",JoinDomainOrWorkgroup=" + c.join);
        sys::Domain domain;
        domain.SetAccount("joiner", "Join-Me-1");
        int result = -1;
        EXPECT_EQ(machine.Run([&] { result = domain.JoinWorkgroup("LAB"); }), c.outcome);
        EXPECT_EQ(result, c.result);
        EXPECT_EQ(machine.Calls("ExecMethod").size(), c.methods);
        EXPECT_THAT(machine.Leaks(), IsEmpty());
    }
}

TEST(JoinWorkgroup, TakesEffectAtTheRestart) {
    Machine machine(MemberIn("East/Sales"));
    sys::Domain domain;
    domain.SetAccount("joiner", "Join-Me-1");
    EXPECT_EQ(domain.JoinWorkgroup("LAB"), 0);
    EXPECT_TRUE(domain.IsDomainMember());
    machine->Restart();
    EXPECT_FALSE(domain.IsDomainMember());
    EXPECT_EQ(domain.Workgroup(), "LAB");
}

TEST(JoinDomain, FlagsFollowMembershipOptionAndAttempt) {
    struct Case {
        bool member;
        bool option;
        const char* results;
        std::vector<int> flags;
        Outcome outcome;
        int result;
    };
    const auto failed = [](std::uint32_t code, int line) {
        return DomainFailure(" - JoinDomainAndOu error", line, 2, code);
    };
    const Case cases[] = {
        {false, false, "#1=0", {0x1}, Success(), 0},
        {false, true, "#1=1", {0x101}, Success(), 1},
        {true, false, "#1=0", {0x21}, Success(), 0},
        {true, true, "#1=1", {0x121}, Success(), 1},
        {false, false, "#1=2224,JoinDomainOrWorkgroup#2=0", {0x1, 0x3}, Success(), 0},
        {true, true, "#1=0x80070005,JoinDomainOrWorkgroup#2=1", {0x121, 0x123}, Success(), 1},
        {false, false, "=1326", {0x1, 0x3}, failed(1326, 728), -1},
        {true, false, "=0x80070005", {0x21, 0x23}, failed(0x80070005, 735), -1},
        {false, false, "#1=5,JoinDomainOrWorkgroup#2=2", {0x1, 0x3}, failed(2, 728), -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.results);
        Machine machine(c.member ? MemberIn("") : machine::DefaultState());
        machine.Fail(std::string("JoinDomainOrWorkgroup") + c.results);
        sys::Domain domain;
        domain.SetAccount("joiner", "Join-Me-1");
        int result = -1;
        EXPECT_EQ(machine.Run([&] {
            result = domain.JoinDomainAndOu("other.example", "East/Sales", c.option);
        }),
                  c.outcome);
        EXPECT_EQ(result, c.result);
        std::vector<std::string> calls;
        for (const int flags : c.flags) {
            calls.push_back(
                R"(JoinDomainOrWorkgroup Name="other.example" UserName="other.example\joiner" )"
                R"(Password=*** AccountOU="OU=Sales,OU=East,DC=other,DC=example" FJoinOptions=)" +
                std::to_string(flags));
        }
        EXPECT_THAT(MethodCalls(machine), testing::ElementsAreArray(calls));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
    }
}

TEST(JoinDomain, WithoutAUnitNoneIsPassed) {
    Machine machine;
    machine.Fail("JoinDomainOrWorkgroup=0");
    sys::Domain domain;
    domain.SetAccount("joiner", "Join-Me-1");
    domain.JoinDomainAndOu("corp.example", "", false);
    machine.Run([&] { domain.JoinDomainAndOu("DC=corp,DC=example", "", false); });
    EXPECT_THAT(MethodCalls(machine),
                ElementsAre(R"(JoinDomainOrWorkgroup Name="DC=corp,DC=example" )"
                            R"(UserName="DC=corp,DC=example\joiner" Password=*** AccountOU="" )"
                            R"(FJoinOptions=1)"));
}

TEST(JoinDomain, CreatesTheComputerObjectInItsUnit) {
    Machine machine;
    sys::Domain domain;
    domain.SetAccount("joiner", "Join-Me-1");
    EXPECT_EQ(domain.JoinDomainAndOu("corp.example", "East/Sales", false), 0);
    machine->Restart();
    std::string unit;
    EXPECT_EQ(domain.GetOu(unit, false), "East/Sales");
    EXPECT_EQ(domain.DomainName(), "CORP");
}

TEST(JoinDomain, RefusedAccountsArriveAsTheMethodsCode) {
    for (const auto& [user, password, code] :
         {std::tuple{"joiner", "wrong", 1326U}, std::tuple{"visitor", "Look-Only-2", 5U}}) {
        Machine machine;
        sys::Domain domain;
        domain.SetAccount(user, password);
        EXPECT_EQ(machine.Run([&] { domain.JoinDomainAndOu("corp.example", "", false); }),
                  DomainFailure(" - JoinDomainAndOu error", 728, 2, code));
        EXPECT_EQ(machine.Calls("ExecMethod").size(), 2U);
    }
}

TEST(MoveUnit, BindsToTheDestinationAndMovesTheObjectThere) {
    struct Case {
        const char* from;
        const char* to;
        const char* source;
        const char* destination;
    };
    const Case cases[] = {
        {"East/Sales", "West", "CN=WORKSTATION1,OU=Sales,OU=East,DC=corp,DC=example",
         "OU=West,DC=corp,DC=example"},
        {"East/Sales", "OU=Support,OU=East", "CN=WORKSTATION1,OU=Sales,OU=East,DC=corp,DC=example",
         "OU=Support,OU=East,DC=corp,DC=example"},
        {"", "East/Sales", "CN=WORKSTATION1,CN=Computers,DC=corp,DC=example",
         "OU=Sales,OU=East,DC=corp,DC=example"},
        {"West", "", "CN=WORKSTATION1,OU=West,DC=corp,DC=example",
         "CN=Computers,DC=corp,DC=example"},
        {"West", "OU=East,DC=corp,DC=example", "CN=WORKSTATION1,OU=West,DC=corp,DC=example",
         "OU=East,DC=corp,DC=example"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.from) + " -> " + c.to);
        Machine machine(MemberIn(c.from));
        sys::Domain domain;
        domain.SetAccount("joiner", "Join-Me-1");
        bool moved = true;
        EXPECT_EQ(machine.Run([&] { moved = domain.MoveOu(c.to); }), Success());
        EXPECT_FALSE(moved) << "false, also when it was moved";
        const std::string destination = std::string("LDAP://") + c.destination;
        EXPECT_THAT(machine.Calls("CoInitialize"), ElementsAre("CoInitialize"));
        EXPECT_THAT(machine.Calls("ADsOpenObject"),
                    ElementsAre("ADsOpenObject path=" + destination +
                                " user=corp.example\\joiner password=*** flags=0x1"));
        EXPECT_THAT(machine.Calls("MoveHere"),
                    ElementsAre("IADsContainer::MoveHere into=" + destination + " source=LDAP://" +
                                c.source));
        const std::vector<std::string> names = machine.CallNames();
        EXPECT_THAT(std::vector<std::string>(names.end() - 6, names.end()),
                    ElementsAre("CoInitialize", "ADsOpenObject", "IADsContainer::MoveHere",
                                "IADsContainer::Release", "IDispatch::Release", "CoUninitialize"));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        machine::State state = machine->GetState();
        EXPECT_EQ(machine::model::OwnDistinguishedName(state),
                  "CN=WORKSTATION1," + std::string(c.destination));
    }
}

TEST(MoveUnit, WhatTheDirectoryRefusesIsAnError) {
    struct Case {
        const char* name;
        const char* user;
        const char* password;
        const char* destination;
        const char* message;
        std::uint32_t code;
    };
    constexpr const char* kBind = "Unable to bind to destination OU";
    constexpr const char* kMove = "Unable to locate computer at source OU";
    const Case cases[] = {
        {"wrong password", "joiner", "wrong", "West", kBind, machine::model::LogonFailure},
        {"unknown account", "nobody", "x", "West", kBind, machine::model::LogonFailure},
        {"unknown unit", "joiner", "Join-Me-1", "North", kBind, machine::model::NoSuchObject},
        {"no right", "visitor", "Look-Only-2", "West", kMove, machine::model::AccessDenied},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Machine machine(MemberIn("East/Sales"));
        sys::Domain domain;
        domain.SetAccount(c.user, c.password);
        EXPECT_EQ(machine.Run([&] { domain.MoveOu(c.destination); }),
                  DomainFailure(c.message, 469, 1, c.code));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        EXPECT_EQ(machine.LostComBlocks(), 0U);
        EXPECT_EQ(machine->GetState(), MemberIn("East/Sales"));
    }
}

TEST(MoveUnit, OutsideADomainTheDirectoryIsLeftAlone) {
    Machine machine;
    sys::Domain domain;
    domain.SetAccount("joiner", "Join-Me-1");
    bool moved = true;
    EXPECT_EQ(machine.Run([&] { moved = domain.MoveOu("West"); }), Success());
    EXPECT_FALSE(moved);
    for (const char* const call : {"CoInitialize", "CoInitializeEx", "ADsOpenObject"}) {
        EXPECT_THAT(machine.Calls(call), IsEmpty());
    }
}

}  // namespace
