// How many platform calls that cost time one whole request makes: exactly as many as it needs. How
// often a child is waited for is a matter of time; the other calls go with these, and the ledger
// has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tests/cases/CaseFile.h"
#include "tests/cases/harness/ModuleRun.h"
#include "tests/cases/harness/PresentedFile.h"

namespace {

constexpr std::string_view counted[] = {"ConnectServer",
                                        "ExecQuery",
                                        "Get",
                                        "ExecMethod",
                                        "RegOpenKeyExA",
                                        "LsaOpenPolicy",
                                        "NetWkstaGetInfo",
                                        "GetComputerObjectNameA",
                                        "ADsOpenObject",
                                        "LoadLibraryA",
                                        "Decrypt",
                                        "CreateProcessA",
                                        "Sleep",
                                        "GetFileAttributesA",
                                        "CreateFileA"};

/// The calls that one request for the case makes: "ConnectServer 2, Decrypt 1".
std::string Count(const std::string& caseName, int pass) {
    const cases::Case tested = cases::LoadCase(caseName);
    const e2e::AgentFolder agent;
    const e2e::PresentedFile file(agent, "counted.ini", support::ReadFile(tested.configuration));
    machine::Simulation simulation(tested.machine);
    simulation.SetProgramFile(agent.Program());
    for (int i = 1; i < pass; ++i) {
        e2e::RunConfigure(simulation, file.Present());
        simulation.Restart();
    }
    const std::vector<machine::TraceEntry> calls =
        e2e::RunConfigure(simulation, file.Present()).calls;
    std::string text;
    for (const std::string_view function : counted) {
        if (const auto count =
                std::ranges::count(calls, function, &machine::TraceEntry::function)) {
            text +=
                (text.empty() ? "" : ", ") + std::string(function) + " " + std::to_string(count);
        }
    }
    return text;
}

TEST(CallCount, IsWhatARequestNeeds) {
    struct Case {
        const char* name;
        int pass;
        const char* counts;
    };
    // Each query and each method has a connection of its own; a method on the computer asks for the
    // computer's name over its own. Looking at three adapters, two of them PCI, without routes: the
    // routes, the list, a device id each and ten queries for a PCI adapter, with two registry
    // texts, are 25 queries that read 32 properties. A method's result is one Get.
    const Case cases[] = {
        {"global-only", 1, "GetFileAttributesA 4"},
        // Addresses, gateways, servers, suffixes: a query and a method each. On DHCP the addresses
        // need no look.
        {"dhcp-to-static", 1,
         "ConnectServer 33, ExecQuery 29, Get 42, ExecMethod 4, RegOpenKeyExA 4, Sleep 1, "
         "GetFileAttributesA 4"},
        // Settled, so a query each and one for the first address; another file is replaced.
        {"dhcp-to-static", 2,
         "ConnectServer 30, ExecQuery 30, Get 40, RegOpenKeyExA 4, Sleep 1, "
         "GetFileAttributesA 5, CreateFileA 2"},
        // Two routes are read for the comparison and for each PCI adapter; two go and two come.
        {"routes-are-made-equal", 1,
         "ConnectServer 27, ExecQuery 27, Get 59, RegOpenKeyExA 4, CreateProcessA 4, "
         "GetFileAttributesA 4"},
        // The rename: membership is asked for by the rule and by the join itself.
        {"rename-and-join", 1,
         "ConnectServer 2, ExecQuery 2, Get 3, ExecMethod 1, LsaOpenPolicy 2, "
         "NetWkstaGetInfo 2, LoadLibraryA 1, Decrypt 2, GetFileAttributesA 1"},
        // The join: once more by the command; two attempts.
        {"rename-and-join", 2,
         "ConnectServer 3, ExecQuery 3, Get 5, ExecMethod 2, LsaOpenPolicy 3, "
         "NetWkstaGetInfo 3, LoadLibraryA 1, Decrypt 2, GetFileAttributesA 1"},
        // Membership: the command, the restart's need, the leave.
        {"leave-the-domain", 1,
         "ConnectServer 2, ExecQuery 2, Get 4, ExecMethod 2, LsaOpenPolicy 3, "
         "LoadLibraryA 1, Decrypt 2, GetFileAttributesA 1"},
        // Membership: the rule, then the command and the move, twice each, for the present unit
        // too, whose length and name are two calls.
        {"move-to-another-unit", 1,
         "ConnectServer 1, ExecQuery 1, Get 1, LsaOpenPolicy 5, GetComputerObjectNameA 4, "
         "ADsOpenObject 1, LoadLibraryA 1, Decrypt 2, GetFileAttributesA 4"},
    };
    for (const Case& tested : cases) {
        EXPECT_EQ(Count(tested.name, tested.pass), tested.counts)
            << tested.name << ", pass " << tested.pass;
    }
}

}  // namespace
