// Membership, units, joins and moves on the simulated machine: what is asked and called, and what
// is left when any platform call fails. What must come out of a failure is worked out from the
// calls that were answered, by the order in which an operation may give up.
#include "common/sys/Domain.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

struct WmiOperation {
    const char* message;
    std::int32_t line;
    bool isMethod;
};

constexpr WmiOperation kNameQuery = {"Wmi query failed to get computer name", 101, false};
constexpr WmiOperation kJoin = {"Wmi method failed to join the domain or workgroup", 1858, true};
constexpr WmiOperation kUnjoin = {"Wmi method failed to unjoin the domain or workgroup", 2008,
                                  true};

/// The error that a failed call must have led to; none for the calls whose failure is passed over.
Outcome OutcomeOfFailedCall(const machine::TraceEntry& entry, const WmiOperation* wmi,
                            std::size_t nameRequests) {
    const std::uint32_t code = CodeOf(entry);
    const std::string& function = entry.function;
    if (function == "LsaOpenPolicy") {
        return DomainFailure(" - IsDomainMember returned error ", 73,
                             static_cast<std::int32_t>(code), ERROR_ACCESS_DENIED);
    }
    if (function == "GetComputerObjectNameA" && nameRequests == 2) {
        return DomainFailure("GetOu() failed calling GetComputerObjectName()", 247, 0, code);
    }
    if (function == "ADsOpenObject") {
        return DomainFailure("Unable to bind to destination OU", 469, 1, code);
    }
    if (function == "MoveHere") {
        return DomainFailure("Unable to locate computer at source OU", 469, 1, code);
    }
    return wmi != nullptr && EndsWmi(entry, wmi->isMethod)
               ? WmiFailure(wmi->message, wmi->line, code)
               : Success();
}

/// Walks the calls up to the first one that an operation may not survive.
Outcome DomainReplay(const Entries& entries, const std::vector<WmiOperation>& operations = {}) {
    std::size_t connection = 0;
    std::size_t nameRequests = 0;
    Outcome outcome;
    for (auto entry = entries.begin(); entry != entries.end() && outcome == Success(); ++entry) {
        nameRequests += entry->function == "GetComputerObjectNameA" ? 1 : 0;
        connection += entry->function == "CoUninitialize" ? 1 : 0;
        if (entry->failed) {
            outcome = OutcomeOfFailedCall(
                *entry, connection < operations.size() ? &operations[connection] : nullptr,
                nameRequests);
        }
    }
    return outcome;
}

SweepOptions Beginning(machine::State start) {
    SweepOptions options;
    options.start = std::move(start);
    return options;
}

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

bool WasAnswered(const Entries& entries, const char* informationClass) {
    return std::ranges::any_of(entries, [&](const auto& entry) {
        return entry.function == "LsaQueryInformationPolicy" && !entry.failed &&
               ArgumentOf(entry, "class") == informationClass;
    });
}

TEST(DomainMembership, KeepsWhatTheSystemDoesNotSay) {
    for (const bool isMember : {true, false}) {
        const machine::State start = isMember ? MemberIn("") : machine::DefaultState();
        const Operation operation = [](std::string& outputs) {
            sys::Domain domain;
            bool member = false;
            const Show show(outputs, [&] {
                return domain.DomainName() + "/" + domain.DnsDomainName() + "/" +
                       domain.Workgroup() + (member ? " member" : "");
            });
            member = domain.IsDomainMember();
        };
        const auto check = [isMember](const FaultyRun& run) {
            EXPECT_EQ(run.outcome, DomainReplay(run.Calls()));
            const bool primary = isMember && WasAnswered(run.Calls(), "3");
            const bool dns = isMember && WasAnswered(run.Calls(), "12");
            const bool workstation = CountAnswered(run.Calls(), "NetWkstaGetInfo") != 0;
            const std::string group = isMember ? "CORP" : "WORKGROUP";
            EXPECT_EQ(run.outputs, std::string(primary ? "CORP/" : "/") +
                                       (dns ? "corp.example/" : "/") + (workstation ? group : "") +
                                       (primary || dns ? " member" : ""));
        };
        Sweep(operation, check, Beginning(start));
        Machine machine(start);
        std::string outputs;
        EXPECT_EQ(machine.Run([&] { operation(outputs); }), Success());
        EXPECT_EQ(outputs, isMember ? "CORP/corp.example/ member" : "//WORKGROUP");
        EXPECT_THAT(machine.Texts(), ElementsAreArray(MembershipCalls(isMember)));
    }
}

TEST(DomainMembership, IsAskedForAgainAtEveryCall) {
    Machine machine(MemberIn("East/Sales"));
    sys::Domain domain;
    EXPECT_TRUE(domain.IsDomainMember());
    machine->SetState(machine::DefaultState());
    EXPECT_FALSE(domain.IsDomainMember());
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

TEST(DomainUnit, IsEmptyWhereItCannotBeRead) {
    const Operation operation = [](std::string& outputs) {
        sys::Domain domain;
        std::string out = "before";
        const Show show(outputs, [&] { return out; });
        domain.GetOu(out, true);
    };
    const auto check = [](const FaultyRun& run) {
        EXPECT_EQ(run.outcome, DomainReplay(run.Calls()));
        const bool read = CountAnswered(run.Calls(), "GetComputerObjectNameA") == 2;
        EXPECT_EQ(run.outputs, read ? "OU=Sales,OU=East" : "");
    };
    Sweep(operation, check, Beginning(MemberIn("East/Sales")));
}

/// A domain whose account may do everything.
struct JoinersDomain : sys::Domain {
    JoinersDomain() { SetAccount("joiner", "Join-Me-1"); }
};

/// A change through the domain that gives no result when it fails.
template <class Change>
Operation Changing(Change change) {
    return [change](std::string& outputs) {
        JoinersDomain domain;
        outputs = "nothing";
        outputs = std::to_string(change(domain));
    };
}

void ExpectReplay(const FaultyRun& run, const std::vector<WmiOperation>& operations) {
    const Outcome expected = DomainReplay(run.Calls(), operations);
    EXPECT_EQ(run.outcome, expected);
    EXPECT_EQ(run.outputs, expected == Success() ? "0" : "nothing");
    // The machine is what the calls that were carried out have made of it.
    EXPECT_TRUE(!run.ChangedTheMachine() || CountAnswered(run.Calls(), "ExecMethod") != 0 ||
                CountAnswered(run.Calls(), "MoveHere") != 0);
}

TEST(JoinWorkgroup, AnyFailingCallEndsIt) {
    for (const bool isMember : {true, false}) {
        const auto check = [isMember](const FaultyRun& run) {
            const bool leaves =
                isMember && CountAnswered(run.Calls(), "LsaQueryInformationPolicy") > 0;
            ExpectReplay(run, leaves ? std::vector{kUnjoin, kJoin} : std::vector{kJoin});
        };
        Sweep(Changing([](sys::Domain& domain) { return domain.JoinWorkgroup("LAB"); }), check,
              Beginning(isMember ? MemberIn("") : machine::DefaultState()));
    }
}

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

TEST(JoinDomain, AnyFailingCallEndsIt) {
    // There is no computer account yet: the first attempt is refused, the second one creates it.
    const auto check = [](const FaultyRun& run) {
        ExpectReplay(run, {kJoin, kJoin});
        EXPECT_EQ(run.machine->GetState().pendingMembership.has_value(),
                  CountAnswered(run.Calls(), "ExecMethod") == 2);
    };
    Sweep(Changing([](sys::Domain& domain) {
              return domain.JoinDomainAndOu("corp.example", "East/Sales", false);
          }),
          check, Beginning(machine::DefaultState()));
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

TEST(MoveUnit, AnyFailingCallEndsIt) {
    const auto check = [](const FaultyRun& run) {
        ExpectReplay(run, {kNameQuery});
        EXPECT_EQ(run.ChangedTheMachine(), CountAnswered(run.Calls(), "MoveHere") == 1);
    };
    Sweep(Changing([](sys::Domain& domain) { return domain.MoveOu("West"); }), check,
          Beginning(MemberIn("East/Sales")));
}

TEST(MoveUnit, BindsToTheDestinationAndMovesTheObjectThere) {
    Machine machine(MemberIn(""));
    EXPECT_EQ(machine.Run([] { EXPECT_FALSE(JoinersDomain().MoveOu("West")); }), Success());
    const std::string destination = "LDAP://OU=West,DC=corp,DC=example";
    EXPECT_THAT(machine.Texts("ADsOpenObject"),
                ElementsAre("ADsOpenObject path=" + destination +
                            " user=corp.example\\joiner password=*** flags=0x1"));
}

}  // namespace
