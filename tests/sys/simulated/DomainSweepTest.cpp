// The domain operations with each of their platform calls failing in turn. What must come out is
// worked out from the calls that were answered, by the order in which an operation may give up.
#include "common/sys/Domain.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/sys/simulated/Members.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;

struct WmiOperation {
    const char* message;
    std::int32_t line;
    bool isMethod;
};

constexpr WmiOperation kNameQuery = {"Wmi query failed to get computer name", 101, false};
constexpr WmiOperation kJoin = {"Wmi method failed to join the domain or workgroup", 1858, true};
constexpr WmiOperation kUnjoin = {"Wmi method failed to unjoin the domain or workgroup", 2008,
                                  true};

bool IsOneOf(const std::string& function, const std::vector<const char*>& functions) {
    return std::find(functions.begin(), functions.end(), function) != functions.end();
}

std::size_t CountAnswered(const Entries& entries, std::string_view function) {
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(), [&](const machine::TraceEntry& entry) {
            return entry.function == function && !entry.failed;
        }));
}

/// The error that a failed call must have led to; none for the calls whose failure is passed over.
Outcome OutcomeOfFailedCall(const machine::TraceEntry& entry, const WmiOperation* wmi,
                            std::size_t nameRequests) {
    const std::string& function = entry.function;
    const std::uint32_t code = CodeOf(entry);
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
    const bool securityIsSet = code == static_cast<std::uint32_t>(RPC_E_TOO_LATE);
    const bool ends =
        (function == "CoInitializeSecurity" && !securityIsSet) ||
        IsOneOf(function, {"CoInitializeEx", "CoCreateInstance", "ConnectServer", "ExecQuery"}) ||
        (IsOneOf(function,
                 {"Next", "Get", "GetObject", "GetMethod", "SpawnInstance", "Put", "ExecMethod"}) &&
         wmi->isMethod);
    return ends ? WmiFailure(wmi->message, wmi->line, code) : Success();
}

/// Walks the calls up to the first one that an operation may not survive.
Outcome Replay(const Entries& entries, const std::vector<WmiOperation>& operations) {
    std::size_t connection = 0;
    std::size_t nameRequests = 0;
    for (const machine::TraceEntry& entry : entries) {
        nameRequests += entry.function == "GetComputerObjectNameA" ? 1 : 0;
        connection += entry.function == "CoUninitialize" ? 1 : 0;
        if (entry.failed) {
            const WmiOperation* const wmi =
                connection < operations.size() ? &operations[connection] : nullptr;
            const Outcome outcome = OutcomeOfFailedCall(entry, wmi, nameRequests);
            if (outcome != Success()) {
                return outcome;
            }
        }
    }
    return Success();
}

/// The policy handle is lost where the workstation gives no information.
std::vector<std::string> LostPolicyHandles(const Entries& entries) {
    const auto lost =
        std::count_if(entries.begin(), entries.end(), [](const machine::TraceEntry& entry) {
            return entry.function == "NetWkstaGetInfo" && entry.failed;
        });
    return {static_cast<std::size_t>(lost), "LSA policy handle"};
}

SweepOptions Beginning(machine::State start) {
    SweepOptions options;
    options.start = std::move(start);
    options.keptLeaks = LostPolicyHandles;
    return options;
}

std::string Describe(const sys::Domain& domain) {
    return domain.DomainName() + "/" + domain.DnsDomainName() + "/" + domain.Workgroup();
}

TEST(DomainSweep, MembershipKeepsWhatTheSystemDoesNotSay) {
    struct Case {
        machine::State start;
        bool member;
        const char* domain;
        const char* dnsDomain;
        const char* workgroup;
    };
    const Case cases[] = {
        {MemberIn(""), true, "CORP", "corp.example", "CORP"},
        {machine::DefaultState(), false, "", "", "WORKGROUP"},
    };
    for (const Case& c : cases) {
        const Operation operation = [](std::string& outputs) {
            sys::Domain domain;
            bool member = false;
            const Show show(outputs, [&] { return Describe(domain) + (member ? " member" : ""); });
            member = domain.IsDomainMember();
        };
        const auto check = [&c](const FaultyRun& run) {
            EXPECT_EQ(run.outcome, Replay(run.machine.Entries(), {}));
            const Entries& entries = run.machine.Entries();
            const auto answered = [&entries](const char* function, const char* informationClass) {
                return std::any_of(entries.begin(), entries.end(), [&](const auto& entry) {
                    return entry.function == function && !entry.failed &&
                           (informationClass == nullptr ||
                            ArgumentOf(entry, "class") == informationClass);
                });
            };
            const bool primary = answered("LsaQueryInformationPolicy", "3");
            const bool dns = answered("LsaQueryInformationPolicy", "12");
            const bool member = c.member && (primary || dns);
            const std::string expected = std::string(primary && c.member ? c.domain : "") + "/" +
                                         (dns ? c.dnsDomain : "") + "/" +
                                         (answered("NetWkstaGetInfo", nullptr) ? c.workgroup : "") +
                                         (member ? " member" : "");
            EXPECT_EQ(run.outputs, expected);
        };
        Sweep(operation, check, Beginning(c.start));
    }
}

TEST(DomainSweep, UnitIsEmptyWhereItCannotBeRead) {
    const Operation operation = [](std::string& outputs) {
        sys::Domain domain;
        std::string out = "before";
        const Show show(outputs, [&] { return out; });
        domain.GetOu(out, true);
    };
    const auto check = [](const FaultyRun& run) {
        const Entries& entries = run.machine.Entries();
        EXPECT_EQ(run.outcome, Replay(entries, {}));
        const bool read = CountAnswered(entries, "GetComputerObjectNameA") == 2;
        EXPECT_EQ(run.outputs, read ? "OU=Sales,OU=East" : "");
    };
    Sweep(operation, check, Beginning(MemberIn("East/Sales")));
}

/// The machine is what the methods that were carried out have made of it.
void ExpectMethodsAlone(const FaultyRun& run) {
    if (CountAnswered(run.machine.Entries(), "ExecMethod") == 0) {
        EXPECT_EQ(run.machine->GetState(), run.start);
    }
}

TEST(DomainSweep, JoiningAWorkgroup) {
    for (const bool isMember : {true, false}) {
        SCOPED_TRACE(isMember ? "from a domain" : "from a workgroup");
        const Operation operation = [](std::string& outputs) {
            sys::Domain domain;
            domain.SetAccount("joiner", "Join-Me-1");
            outputs = "nothing";
            outputs = std::to_string(domain.JoinWorkgroup("LAB"));
        };
        const auto check = [isMember](const FaultyRun& run) {
            const Entries& entries = run.machine.Entries();
            const bool leaves = isMember && CountAnswered(entries, "LsaQueryInformationPolicy") > 0;
            const Outcome expected =
                Replay(entries, leaves ? std::vector{kUnjoin, kJoin} : std::vector{kJoin});
            EXPECT_EQ(run.outcome, expected);
            EXPECT_EQ(run.outputs, expected == Success() ? "0" : "nothing");
            ExpectMethodsAlone(run);
        };
        Sweep(operation, check, Beginning(isMember ? MemberIn("") : machine::DefaultState()));
    }
}

TEST(DomainSweep, JoiningADomain) {
    // There is no computer account yet: the first attempt is refused, the second one creates it.
    const Operation operation = [](std::string& outputs) {
        sys::Domain domain;
        domain.SetAccount("joiner", "Join-Me-1");
        outputs = "nothing";
        outputs = std::to_string(domain.JoinDomainAndOu("corp.example", "East/Sales", false));
    };
    const auto check = [](const FaultyRun& run) {
        const Entries& entries = run.machine.Entries();
        const Outcome expected = Replay(entries, {kJoin, kJoin});
        EXPECT_EQ(run.outcome, expected);
        EXPECT_EQ(run.outputs, expected == Success() ? "0" : "nothing");
        EXPECT_EQ(run.machine->GetState().pendingMembership.has_value(),
                  CountAnswered(entries, "ExecMethod") == 2);
        ExpectMethodsAlone(run);
    };
    Sweep(operation, check, Beginning(machine::DefaultState()));
}

TEST(DomainSweep, MovingTheComputerObject) {
    const Operation operation = [](std::string& outputs) {
        sys::Domain domain;
        domain.SetAccount("joiner", "Join-Me-1");
        outputs = "nothing";
        outputs = domain.MoveOu("West") ? "true" : "false";
    };
    const auto check = [](const FaultyRun& run) {
        const Entries& entries = run.machine.Entries();
        const Outcome expected = Replay(entries, {kNameQuery});
        EXPECT_EQ(run.outcome, expected);
        EXPECT_EQ(run.outputs, expected == Success() ? "false" : "nothing");
        EXPECT_EQ(run.machine->GetState() != run.start, CountAnswered(entries, "MoveHere") == 1);
    };
    Sweep(operation, check, Beginning(MemberIn("East/Sales")));
}

}  // namespace
