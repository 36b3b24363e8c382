// Which platform calls that cost time one whole request makes: exactly those that it needs. How
// often a child is waited for is a matter of time; the other calls go with these, and the ledger
// has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "machine/Actions.h"
#include "tests/requests/cases/CaseFile.h"
#include "tests/requests/harness/ModuleRun.h"
#include "tests/requests/harness/PresentedFile.h"

namespace {

using Calls = std::vector<machine::TraceEntry>;

/// Beside queries, connections and reads.
constexpr std::string_view kCounted[] = {
    "ExecMethod",      "RegOpenKeyExA",      "LsaOpenPolicy",
    "NetWkstaGetInfo", "CreateProcessA",     "GetComputerObjectNameA",
    "ADsOpenObject",   "LoadLibraryA",       "Decrypt",
    "Sleep",           "GetFileAttributesA", "CreateFileA"};

std::size_t Count(const Calls& calls, std::string_view function) {
    return static_cast<std::size_t>(
        std::ranges::count(calls, function, &machine::TraceEntry::function));
}

/// The calls of one request for the case.
Calls CallsOf(const std::string& caseName, int pass) {
    const cases::Case tested = cases::LoadCase(caseName);
    const requests::AgentFolder agent;
    const requests::PresentedFile file(agent, "counted.ini",
                                       support::ReadFile(tested.configuration));
    machine::Simulation simulation(tested.machine);
    simulation.SetProgramFile(agent.Program());
    for (int i = 1; i < pass; ++i) {
        requests::RunConfigure(simulation, file.Present());
        simulation.Restart();
    }
    return requests::RunConfigure(simulation, file.Present()).calls;
}

/// The queries by the first property that they select, without those of the adapter tree: what it
/// asks of adapter 1 it asks of adapter 2, which no case touches, and of adapter 7, which is no PCI
/// device, the device id alone; the list once, and the routes for each of the two.
std::map<std::string, int> AskedByCommands(const Calls& calls) {
    std::map<std::string, int> asked;
    for (const machine::TraceEntry& call : calls) {
        if (call.function == "ExecQuery") {
            const std::string text = machine::ArgumentOf(call, "query");
            const std::string first = text.substr(7, text.find_first_of(" ,", 7) - 7);
            asked[first] += text.ends_with("Index=2") ? -1 : 1;
            if (text.ends_with("Index=7")) {
                --asked["PNPDeviceID"];
                --asked["Index"];
                asked["Destination"] -= 2;
            }
        }
    }
    std::erase_if(asked, [](const auto& entry) { return entry.second == 0; });
    return asked;
}

/// Each query and method has a connection of its own, but that a method of the computer asks for
/// the computer's name over it. Each property of each row is read once, and each method's result.
void ExpectNoOtherConnectionOrRead(const Calls& calls) {
    std::size_t connections = 0;
    std::size_t reads = 0;
    for (const machine::TraceEntry& call : calls) {
        if (call.function == "ExecQuery") {
            const std::string text = machine::ArgumentOf(call, "query");
            // The list of adapters asks for SettingID and does not read it.
            const bool isList = text.find("IPEnabled") != std::string::npos;
            const auto commas = std::ranges::count(text, ',');
            reads += std::stoul(machine::ArgumentOf(call, "rows")) *
                     static_cast<std::size_t>(isList ? 1 : commas + 1);
            ++connections;
        } else if (call.function == "ExecMethod") {
            const std::string path = machine::ArgumentOf(call, "path");
            connections += path.starts_with("Win32_ComputerSystem") ? 0 : 1;
            ++reads;
        }
    }
    EXPECT_EQ(Count(calls, "ConnectServer"), connections);
    EXPECT_EQ(Count(calls, "Get"), reads);
}

/// "DHCPEnabled asked 1, ExecMethod 1, Sleep 1"
std::string Describe(const Calls& calls) {
    std::string text;
    const auto add = [&text](const std::string& what, std::size_t count) {
        text += (text.empty() ? "" : ", ") + what + " " + std::to_string(count);
    };
    for (const auto& [property, times] : AskedByCommands(calls)) {
        add(property + " asked", static_cast<std::size_t>(times));
    }
    for (const std::string_view function : kCounted) {
        if (const std::size_t count = Count(calls, function)) {
            add(std::string(function), count);
        }
    }
    return text;
}

TEST(CallCount, IsWhatARequestNeeds) {
    struct Case {
        const char* name;
        int pass;
        const char* calls;
    };
    const Case cases[] = {
        {"global-only", 1, "GetFileAttributesA 4"},
        // Addresses, gateways, servers, suffixes: a query and a method each. On DHCP the addresses
        // need no look.
        {"dhcp-to-static", 1,
         "DHCPEnabled asked 1, DNSServerSearchOrder asked 2, DefaultIPGateway asked 1, ExecMethod "
         "4, "
         "RegOpenKeyExA 4, Sleep 1, GetFileAttributesA 4"},
        // Settled; another file is replaced.
        {"dhcp-to-static", 2,
         "DHCPEnabled asked 1, DNSServerSearchOrder asked 2, DefaultIPGateway asked 1, IPAddress "
         "asked 1, RegOpenKeyExA 4, Sleep 1, GetFileAttributesA 5, CreateFileA 2"},
        // Two go and two come.
        {"routes-are-made-equal", 1,
         "DHCPEnabled asked 1, DNSServerSearchOrder asked 1, Destination asked 1, RegOpenKeyExA 4, "
         "CreateProcessA 4, GetFileAttributesA 4"},
        // The rename: membership is asked for by the rule and by the join itself.
        {"rename-and-join", 1,
         "Name asked 2, ExecMethod 1, LsaOpenPolicy 2, NetWkstaGetInfo 2, LoadLibraryA 1, Decrypt "
         "2, GetFileAttributesA 1"},
        // The join: once more by the command; two attempts.
        {"rename-and-join", 2,
         "Name asked 3, ExecMethod 2, LsaOpenPolicy 3, NetWkstaGetInfo 3, LoadLibraryA 1, Decrypt "
         "2, GetFileAttributesA 1"},
        // Membership: the command, the restart's need, the leave.
        {"leave-the-domain", 1,
         "Name asked 2, ExecMethod 2, LsaOpenPolicy 3, LoadLibraryA 1, Decrypt 2, "
         "GetFileAttributesA 1"},
        // Membership: the rule, then the command and the move, twice each, for the present unit
        // too, whose length and name are two calls.
        {"move-to-another-unit", 1,
         "Name asked 1, LsaOpenPolicy 5, GetComputerObjectNameA 4, ADsOpenObject 1, LoadLibraryA "
         "1, Decrypt 2, GetFileAttributesA 4"},
    };
    for (const Case& tested : cases) {
        SCOPED_TRACE(tested.name + std::string(", pass ") + std::to_string(tested.pass));
        const Calls calls = CallsOf(tested.name, tested.pass);
        EXPECT_EQ(Describe(calls), tested.calls);
        ExpectNoOtherConnectionOrRead(calls);
    }
}

/// The connections, queries and look-ups of classes in all that they pass, each once.
std::set<std::string> WordsOf(const Calls& calls) {
    constexpr std::string_view kFunctions[] = {"CoInitializeEx",
                                               "CoInitializeSecurity",
                                               "CoCreateInstance",
                                               "ConnectServer",
                                               "CoSetProxyBlanket",
                                               "ExecQuery",
                                               "Next",
                                               "GetObject"};
    std::set<std::string> words;
    for (const machine::TraceEntry& call : calls) {
        if (std::ranges::find(kFunctions, call.function) != std::end(kFunctions)) {
            std::string text = call.function;
            for (const auto& [name, value] : call.arguments) {
                const bool isAnswer =
                    name == "rows" || (call.function == "Next" && name == "query");
                text += isAnswer ? "" : " " + name + "=" + value;
            }
            words.insert(text);
        }
    }
    return words;
}

TEST(Calls, AskInTheFixedWords) {
    const std::string nic = " from Win32_NetworkAdapterConfiguration where ";
    const std::string device = " from Win32_NetworkAdapter where Index=1 flags=48";
    const std::string query = "ExecQuery query=select ";
    std::set<std::string> expected = {
        "CoInitializeEx mode=0x0",
        "CoInitializeSecurity authentication level=2 impersonation level=3 capabilities=0x0",
        "CoCreateInstance context=0x1",
        "ConnectServer namespace=root\\cimv2 user=",
        "CoSetProxyBlanket authentication=10 authorisation=0 authentication level=3 impersonation "
        "level=3 capabilities=0x0",
        "Next timeout=-1 count=1",
        "GetObject path=Win32_NetWorkAdapterConfiguration",
        query + "Index, SettingID" + nic + "IPEnabled=true flags=48",
        query + "Destination, Mask, NextHop, Metric1 from Win32_IP4PersistedRouteTable flags=48",
        query + "AdapterType, Manufacturer" + device,
        query + "Caption" + device,
        query + "PNPDeviceID" + device};
    for (const char* const property :
         {"DHCPEnabled", "IPAddress, IPSubnet", "DNSServerSearchOrder, DNSDomainSuffixSearchOrder",
          "SettingID", "DNSDomain, DNSHostName", "DefaultIPGateway", "MACAddress"}) {
        expected.insert(query + property + nic + "Index=1 flags=48");
    }
    std::set<std::string> words = WordsOf(CallsOf("dhcp-to-static", 1));
    std::erase_if(words, [](const std::string& text) {
        return text.find("Index=2") != std::string::npos ||
               text.find("Index=7") != std::string::npos;
    });
    EXPECT_EQ(words, expected);
    const std::set<std::string> ofComputer = WordsOf(CallsOf("rename", 1));
    EXPECT_TRUE(ofComputer.contains(query + "Name from Win32_ComputerSystem flags=48"));
    EXPECT_TRUE(ofComputer.contains("GetObject path=Win32_ComputerSystem"));
}

}  // namespace
