// How many platform calls of each kind one whole request makes: exactly as many as it needs.
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>

#include "machine/MachineFile.h"
#include "tests/cases/CaseFile.h"
#include "tests/cases/harness/KeptLeaks.h"
#include "tests/cases/harness/ModuleRun.h"
#include "tests/cases/harness/PresentedFile.h"

namespace {

/// Calls by name. What is said of an operation is put together with +=.
class Calls {
public:
    Calls& Add(std::map<std::string, std::size_t> calls, std::size_t times = 1) {
        for (const auto& [name, count] : calls) {
            counts_[name] += count * times;
        }
        return *this;
    }

    /// A connection of its own for each query and each method; released are locator and services.
    Calls& Connection() {
        ++connections_;
        return Add({{"CoInitializeEx", 1},
                    {"CoInitializeSecurity", 1},
                    {"CoCreateInstance", 1},
                    {"ConnectServer", 1},
                    {"CoSetProxyBlanket", 1},
                    {"Release", 2},
                    {"CoUninitialize", 1}});
    }

    /// A query for one row: its first row and each property of it; released are row and enumerator.
    Calls& Query(std::size_t properties) {
        return Connection().Rows(1, properties).Add({{"Next", 1}});
    }
    /// A query for all rows: one more Next says that there are no more.
    Calls& ListQuery(std::size_t rows, std::size_t properties) {
        return Connection().Rows(rows, properties).Add({{"Next", rows + 1}});
    }

    /// A method on an adapter or on the class: its definition, its parameters if it has some, the
    /// call, and "ReturnValue". Released are the class, what the call gave and, with parameters,
    /// their definition and their instance.
    Calls& Method(std::size_t parameters) {
        Connection().Add(
            {{"GetObject", 1}, {"GetMethod", 1}, {"ExecMethod", 1}, {"Get", 1}, {"Release", 2}});
        return parameters == 0 ? *this
                               : Add({{"SpawnInstance", 1}, {"Put", parameters}, {"Release", 2}});
    }
    /// A method on the computer asks for the computer's name first, over the same connection.
    Calls& ComputerMethod(std::size_t parameters) {
        return Method(parameters).Rows(1, 1).Add({{"Next", 1}});
    }

    /// The adapter tree: the list of adapters with the one property that is read of it; of every
    /// adapter its device id; of a PCI adapter its place from the registry, DHCP, MAC address, type
    /// and manufacturer, caption, address and mask, domain and host name, all routes, gateways,
    /// servers and suffixes, setting id, and from the registry whether servers were set by hand.
    Calls& Discovery(std::size_t adapters, std::size_t pciAdapters, std::size_t routes) {
        ListQuery(adapters, 1);
        for (std::size_t i = 0; i < adapters; ++i) {
            Query(1);
        }
        for (std::size_t i = 0; i < pciAdapters; ++i) {
            RegistryText();
            Query(1).Query(1).Query(2).Query(1).Query(2).Query(2);
            ListQuery(routes, 4).Query(1).Query(2).Query(1);
            RegistryText();
        }
        return *this;
    }

    /// A text of the registry: type and size first, then the text.
    Calls& RegistryText() {
        return Add({{"RegOpenKeyExA", 1}, {"RegQueryValueExA", 2}, {"RegCloseKey", 1}});
    }

    /// Whether the machine is a domain member. Outside a domain its workgroup is asked for too.
    Calls& Membership(bool isMember) {
        Add({{"LsaOpenPolicy", 1},
             {"LsaQueryInformationPolicy", 2},
             {"LsaFreeMemory", 2},
             {"LsaClose", 1}});
        return isMember ? *this : Add({{"NetWkstaGetInfo", 1}, {"NetApiBufferFree", 1}});
    }

    /// A name and a password, deciphered by one library that is looked into once.
    Calls& Account() {
        return Add(
            {{"LoadLibraryA", 1}, {"GetProcAddress", 1}, {"Decrypt", 2}, {"FreeLibrary", 1}});
    }

    /// A run of route: two pipes whose parent's ends are not inherited, the child, its exit code;
    /// closed are the parent's ends and the child's process and thread.
    Calls& RouteProgram() {
        return Add({{"CreatePipe", 2},
                    {"SetHandleInformation", 2},
                    {"CreateProcessA", 1},
                    {"GetExitCodeProcess", 1},
                    {"CloseHandle", 4}});
    }

    /// The file is there; where it is to go none is; nothing has changed since when it moves.
    Calls& FileFound() { return Add({{"GetFileAttributesA", 1}}); }
    Calls& FilePutAway() {
        return Add({{"GetModuleFileNameA", 1}, {"GetFileAttributesA", 3}, {"MoveFileA", 1}});
    }

    /// Where it is to go stands another: both are opened to see that, and the other is deleted.
    Calls& FileReplacesAnother() {
        return FilePutAway().Add({{"GetFileAttributesA", 1},
                                  {"CreateFileA", 2},
                                  {"GetFileInformationByHandle", 2},
                                  {"CloseHandle", 2},
                                  {"DeleteFileA", 1}});
    }

    const std::map<std::string, std::size_t>& Counts() const { return counts_; }
    std::size_t Connections() const { return connections_; }

private:
    Calls& Rows(std::size_t rows, std::size_t properties) {
        return Add({{"ExecQuery", 1}, {"Get", rows * properties}, {"Release", rows + 1}});
    }

    std::map<std::string, std::size_t> counts_;
    std::size_t connections_ = 0;
};

/// What one request for the case makes. How often a child is waited for is a matter of time.
std::map<std::string, std::size_t> Count(const std::string& caseName, std::size_t pass = 1) {
    const cases::Case tested = cases::LoadCase(caseName);
    const e2e::AgentFolder agent("counted-agent");
    const e2e::PresentedFile file(agent, "counted.ini", e2e::ReadFile(tested.configuration));
    machine::Simulation simulation(tested.machine);
    simulation.SetProgramFile(agent.Program());
    e2e::RunResult run;
    for (std::size_t i = 0; i < pass; ++i) {
        if (i > 0) {
            simulation.Restart();
        }
        run = e2e::RunConfigure(simulation, file.Present());
    }
    std::map<std::string, std::size_t> counts;
    for (const machine::TraceEntry& call : run.calls) {
        if (call.function != "WaitForSingleObject") {
            ++counts[call.function];
        }
    }
    simulation.GetLedger().Clear();
    return counts;
}

TEST(CallCount, AFileWithoutSettings) {
    EXPECT_EQ(Count("global-only"), Calls().FileFound().FilePutAway().Counts());
}

TEST(CallCount, EveryCommandOfAnAdapter) {
    // Two PCI adapters, a virtual one, no route. The section asks for no route either: its command
    // compares once and is dropped.
    Calls calls;
    calls.FileFound().ListQuery(0, 4).Discovery(3, 2, 0);
    calls.Query(1).Method(2);  // on DHCP now: the addresses need no look; addresses and masks
    calls.Add({{"Sleep", 1}});
    calls.Query(1).Method(1);  // gateways
    calls.Query(2).Method(1);  // servers; the query reads the suffixes too
    calls.Query(2).Method(1);  // suffixes; the query reads the servers too
    calls.FilePutAway();
    EXPECT_EQ(Count("dhcp-to-static"), calls.Counts());
    // 1 + (1 + 3 + 2 * 10) for the analysis, then a query and a method for each of four commands.
    EXPECT_EQ(calls.Connections(), 1U + 24U + 8U);
}

TEST(CallCount, ASettledAdapter) {
    Calls calls;
    calls.FileFound().ListQuery(0, 4).Discovery(3, 2, 0);
    calls.Query(1).Query(2);  // no DHCP, so the first address is looked at
    calls.Add({{"Sleep", 1}});
    calls.Query(1).Query(2).Query(2);
    calls.FileReplacesAnother();
    EXPECT_EQ(Count("dhcp-to-static", 2), calls.Counts());
}

TEST(CallCount, Routes) {
    // Two routes of the machine are read for the comparison and once for each PCI adapter. Two
    // deletions and two additions.
    Calls calls;
    calls.FileFound().ListQuery(2, 4).Discovery(3, 2, 2);
    calls.Query(1).Query(2);  // DHCP is on, the suffixes are right; no servers are asked for
    calls.RouteProgram().RouteProgram().RouteProgram().RouteProgram();
    calls.FilePutAway();
    EXPECT_EQ(Count("routes-are-made-equal"), calls.Counts());
}

TEST(CallCount, RenameAndJoin) {
    // The rename. Membership is asked for by the rule and by the join itself; the two commands that
    // need a restart need no further look.
    Calls rename;
    rename.FileFound().Account().Membership(false).Membership(false);
    rename.Query(1).ComputerMethod(3);
    EXPECT_EQ(Count("rename-and-join"), rename.Counts());

    // The join, behind the restart: the name is right; membership is asked for by the rule, by the
    // command, and before the join; two attempts.
    Calls join;
    join.FileFound().Account().Membership(false).Membership(false).Query(1);
    join.Membership(false).ComputerMethod(5).ComputerMethod(5);
    EXPECT_EQ(Count("rename-and-join", 2), join.Counts());
}

TEST(CallCount, LeavingADomain) {
    // Membership: the command, the restart's need, the leave.
    Calls calls;
    calls.FileFound().Account().Membership(true).Membership(true);
    calls.Membership(true).ComputerMethod(3).ComputerMethod(5);
    EXPECT_EQ(Count("leave-the-domain"), calls.Counts());
}

TEST(CallCount, MovingToAnotherUnit) {
    // The rule asks for membership. The command asks itself, and once more for the present unit,
    // whose length and name are two calls; all of this again for the move, which also asks for the
    // computer's name.
    Calls calls;
    calls.FileFound().Account().Membership(true);
    for (int i = 0; i < 2; ++i) {
        calls.Membership(true).Membership(true).Add({{"GetComputerObjectNameA", 2}});
    }
    calls.Query(1);
    calls.Add({{"CoInitialize", 1}, {"ADsOpenObject", 1}, {"MoveHere", 1}, {"CoUninitialize", 1}});
    calls.Add({{"Release", 2}});  // the container and the moved object
    calls.FilePutAway();
    EXPECT_EQ(Count("move-to-another-unit"), calls.Counts());
}

}  // namespace
