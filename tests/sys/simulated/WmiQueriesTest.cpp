// The 13 queries on the simulated machine: what they ask for, what they make of the answer, and
// what is left of them when any of their platform calls fails.
#include "common/sys/WmiQueries.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>
#include <wbemcli.h>

#include <string>
#include <vector>

#include "common/util/Strings.h"
#include "tests/sys/simulated/Machine.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// What an output holds before the query, and what the property makes of it.
struct Property {
    const char* name;
    std::string kept;
    std::string read;
};

struct Query {
    const char* name;
    const char* text;
    const char* message;
    std::int32_t line;
    std::vector<std::vector<Property>> rows;
    bool isList;  // reads every row; each adds to the outputs
    std::function<sys::Result(std::string&)> run;
};

template <class Elements, class Text>
std::string Join(const Elements& elements, const char* separator, Text text) {
    std::string joined;
    for (const auto& element : elements) {
        const std::string part = text(element);
        joined += (joined.empty() || part.empty() ? "" : separator) + part;
    }
    return joined;
}

std::string Addresses(const std::vector<ipc::IPv4Address>& addresses) {
    return Join(addresses, ",", [](const ipc::IPv4Address& a) { return a.ToString(); });
}

std::string Texts(const std::vector<std::string>& texts) {
    return Join(texts, ",", [](const std::string& text) { return text; });
}

/// A query with one text as output.
template <class Get>
std::function<sys::Result(std::string&)> OneText(Get get) {
    return [get](std::string& shown) {
        std::string text = "kept";
        const Show show(shown, [&] { return text; });
        return get(text);
    };
}

template <class Get>
std::function<sys::Result(std::string&)> TwoTexts(Get get) {
    return [get](std::string& shown) {
        std::string first = "kept";
        std::string second = "kept too";
        const Show show(shown, [&] { return first + "/" + second; });
        return get(first, second);
    };
}

machine::State QueriedMachine() {
    machine::State state = machine::DefaultState();
    state.dnsSuffixes = {"lab.example", "corp.example"};
    state.routes = {{"10.20.0.0", "255.255.0.0", "198.51.100.254", 5},
                    {"10.30.0.0", "255.255.0.0", "198.51.100.253", -1}};
    return state;
}

std::vector<Query> Queries() {
    return {
        {"getComputerName",
         "select Name from Win32_ComputerSystem",
         "Wmi query failed to get computer name",
         101,
         {{{"Name", "kept", "WORKSTATION1"}}},
         false,
         OneText([](std::string& text) { return sys::getComputerName(text); })},
        {"getIpEnabledAdapters",
         "select Index, SettingID from Win32_NetworkAdapterConfiguration where IPEnabled=true",
         "Wmi query failed to IP enabled devices",
         165,
         {{{"Index", "", "1"}}, {{"Index", "", "2"}}, {{"Index", "", "7"}}},
         true,
         [](std::string& shown) {
             std::vector<std::uint32_t> indexes;
             const Show show(shown, [&] {
                 return Join(indexes, " | ", [](std::uint32_t i) { return std::to_string(i); });
             });
             return sys::getIpEnabledAdapters(indexes);
         }},
        {"getDhcpEnabled",
         "select DHCPEnabled from Win32_NetworkAdapterConfiguration where Index=1",
         "Wmi DHCP enabled query failed",
         225,
         {{{"DHCPEnabled", "no", "yes"}}},
         false,
         [](std::string& shown) {
             bool enabled = false;
             const Show show(shown, [&] { return enabled ? "yes" : "no"; });
             return sys::getDhcpEnabled(1, enabled);
         }},
        {"getIpAddressAndMask",
         "select IPAddress, IPSubnet from Win32_NetworkAdapterConfiguration where Index=1",
         "Wmi query failed to get ip address and mask",
         297,
         {{{"IPAddress", "1.2.3.4", "192.0.2.50"}, {"IPSubnet", "5.6.7.8", "255.255.255.0"}}},
         false,
         [](std::string& shown) {
             ipc::IPv4Address address(std::string("1.2.3.4"));
             ipc::IPv4Address mask(std::string("5.6.7.8"));
             const Show show(shown, [&] { return address.ToString() + "/" + mask.ToString(); });
             return sys::getIpAddressAndMask(1, address, mask);
         }},
        {"getDnsServersAndSuffixes",
         "select DNSServerSearchOrder, DNSDomainSuffixSearchOrder from "
         "Win32_NetworkAdapterConfiguration where Index=1",
         "Wmi query failed to get DNS servers and suffixes",
         455,
         {{{"DNSServerSearchOrder", "[]", "[192.0.2.10,192.0.2.11]"},
           {"DNSDomainSuffixSearchOrder", "[]", "[lab.example,corp.example]"}}},
         false,
         [](std::string& shown) {
             std::vector<ipc::IPv4Address> servers;
             std::vector<std::string> suffixes;
             const Show show(
                 shown, [&] { return "[" + Addresses(servers) + "]/[" + Texts(suffixes) + "]"; });
             return sys::getDnsServersAndSuffixes(1, servers, suffixes);
         }},
        {"getSettingId",
         "select SettingID from Win32_NetworkAdapterConfiguration where Index=2",
         "Wmi query failed to get Setting ID",
         521,
         {{{"SettingID", "kept", "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E02}"}}},
         false,
         OneText([](std::string& text) { return sys::getSettingId(2, text); })},
        {"getDnsDomainAndHostName",
         "select DNSDomain, DNSHostName from Win32_NetworkAdapterConfiguration where Index=1",
         "Wmi query failed to get DNS domain and computer host name",
         595,
         {{{"DNSDomain", "kept", "lab.example"}, {"DNSHostName", "kept too", "WORKSTATION1"}}},
         false,
         TwoTexts([](std::string& domain, std::string& host) {
             return sys::getDnsDomainAndHostName(1, domain, host);
         })},
        {"getGateways",
         "select DefaultIPGateway from Win32_NetworkAdapterConfiguration where Index=2",
         "Wmi query failed to get gateways",
         667,
         {{{"DefaultIPGateway", "", "198.51.100.1"}}},
         false,
         [](std::string& shown) {
             std::vector<ipc::IPv4Address> gateways;
             const Show show(shown, [&] { return Addresses(gateways); });
             return sys::getGateways(2, gateways);
         }},
        {"getMacAddress",
         "select MACAddress from Win32_NetworkAdapterConfiguration where Index=1",
         "Wmi query failed to get MAC address",
         733,
         {{{"MACAddress", "kept", "02:00:00:00:00:01"}}},
         false,
         OneText([](std::string& text) { return sys::getMacAddress(1, text); })},
        {"getAdapterTypeAndManufacturer",
         "select AdapterType, Manufacturer from Win32_NetworkAdapter where Index=1",
         "Wmi query failed to get NIC type and manufacturer",
         807,
         {{{"AdapterType", "kept", "Ethernet 802.3"},
           {"Manufacturer", "kept too", "Example Networks"}}},
         false,
         TwoTexts([](std::string& type, std::string& manufacturer) {
             return sys::getAdapterTypeAndManufacturer(1, type, manufacturer);
         })},
        {"getCaption",
         "select Caption from Win32_NetworkAdapter where Index=1",
         "Wmi query failed to get NIC caption",
         873,
         {{{"Caption", "kept", "[00000001] Example Gigabit Adapter"}}},
         false,
         OneText([](std::string& text) { return sys::getCaption(1, text); })},
        {"getPnpDeviceId",
         "select PNPDeviceID from Win32_NetworkAdapter where Index=7",
         "Wmi query failed to get PNP device id",
         939,
         {{{"PNPDeviceID", "kept", "ROOT\\VIRTUALNET\\0000"}}},
         false,
         OneText([](std::string& text) { return sys::getPnpDeviceId(7, text); })},
        {"getStaticRoutes",
         "select Destination, Mask, NextHop, Metric1 from Win32_IP4PersistedRouteTable",
         "Wmi query failed to get static routes",
         1037,
         {{{"Destination", "0.0.0.0", "10.20.0.0"},
           {"Mask", "0.0.0.0", "255.255.0.0"},
           {"NextHop", "0.0.0.0", "198.51.100.254"},
           {"Metric1", "0", "5"}},
          {{"Destination", "0.0.0.0", "10.30.0.0"},
           {"Mask", "0.0.0.0", "255.255.0.0"},
           {"NextHop", "0.0.0.0", "198.51.100.253"},
           {"Metric1", "0", "4294967295"}}},
         true,
         [](std::string& shown) {
             std::vector<sys::RouteRecord> routes;
             const Show show(shown, [&] {
                 return Join(routes, " | ", [](const sys::RouteRecord& route) {
                     return route.destination.ToString() + "/" + route.mask.ToString() + "/" +
                            route.nextHop.ToString() + "/" + std::to_string(route.metric);
                 });
             });
             return sys::getStaticRoutes(routes);
         }},
    };
}

std::vector<std::string> ExpectedCalls(const Query& query) {
    std::vector<std::string> calls = ConnectionCalls();
    calls.push_back("IWbemServices::ExecQuery query=" + std::string(query.text) + " flags=48");
    const std::string next = "IEnumWbemClassObject::Next timeout=-1 count=1";
    for (const std::vector<Property>& row : query.rows) {
        calls.push_back(next);
        for (const Property& property : row) {
            calls.push_back(std::string("IWbemClassObject::Get name=") + property.name);
        }
    }
    if (query.isList) {
        calls.push_back(next);
    }
    calls.push_back("CoUninitialize");
    return calls;
}

TEST(WmiQueries, AskInTheFixedWordsAndReadTheirPropertiesInOrder) {
    for (const Query& query : Queries()) {
        SCOPED_TRACE(query.name);
        Machine machine(QueriedMachine());
        std::string shown;
        sys::Result result = -1;
        EXPECT_EQ(machine.Run([&] { result = query.run(shown); }), Success());
        EXPECT_EQ(result, 0);
        EXPECT_EQ(shown, Join(query.rows, " | ", [](const auto& row) {
                      return Join(row, "/", [](const Property& p) { return p.read; });
                  }));
        EXPECT_THAT(machine.Calls(), ElementsAreArray(ExpectedCalls(query)));
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        EXPECT_EQ(machine.LostComBlocks(), 0U);
        EXPECT_THAT(machine->Unexpected(), IsEmpty());
        EXPECT_EQ(machine->GetState(), QueriedMachine()) << "a query changed the machine";
    }
}

/// What the documented walk over the rows makes of the calls that were answered.
struct Replayed {
    sys::Result result = 0;
    std::string outputs;
};

Replayed Replay(const Query& query, const Entries& entries) {
    std::vector<std::vector<std::string>> rows;
    Replayed replayed;
    for (const machine::TraceEntry& entry : entries) {
        if (entry.function == "Next") {
            if (entry.failed) {
                replayed.result = static_cast<sys::Result>(CodeOf(entry));
            } else if (rows.size() < query.rows.size()) {
                rows.emplace_back();
            }
        } else if (entry.function == "Get") {
            const Property& property = query.rows[rows.size() - 1][rows.back().size()];
            rows.back().push_back(entry.failed ? property.kept : property.read);
            replayed.result = entry.failed ? static_cast<sys::Result>(CodeOf(entry)) : 0;
        }
    }
    if (rows.empty() && !query.isList) {
        replayed.outputs = Join(query.rows[0], "/", [](const Property& p) { return p.kept; });
    } else {
        replayed.outputs = Join(rows, " | ", [](const auto& row) {
            return Join(row, "/", [](const std::string& text) { return text; });
        });
    }
    return replayed;
}

TEST(WmiQueries, AnyFailingCallGivesTheDocumentedEnd) {
    for (const Query& query : Queries()) {
        SCOPED_TRACE(query.name);
        const Operation operation = [&query](std::string& outputs) {
            std::string shown;
            sys::Result result = 0;
            const Show show(outputs,
                            [&] { return util::Format("%d ", static_cast<int>(result)) + shown; });
            result = query.run(shown);
        };
        const auto check = [&query](const FaultyRun& run) {
            // A connection whose last step failed is one all the same.
            const bool atReading = run.fault.Is("Next") || run.fault.Is("Get");
            const bool harmless = run.fault.Is("CoSetProxyBlanket") && !run.fault.stays;
            if (atReading || harmless) {
                EXPECT_EQ(run.outcome, Success());
                const Replayed replayed = Replay(query, run.machine.Entries());
                EXPECT_EQ(run.outputs, util::Format("%d ", static_cast<int>(replayed.result)) +
                                           replayed.outputs);
            } else {
                // After the blanket it is the query that fails, with a code of its own.
                const std::uint32_t code =
                    run.fault.Is("CoSetProxyBlanket") ? WBEM_E_FAILED : run.fault.code;
                EXPECT_EQ(run.outcome, WmiFailure(query.message, query.line, code));
                EXPECT_EQ(run.outputs, "0 " + Replay(query, {}).outputs);
                EXPECT_EQ(run.machine.CallNames().back(), "CoUninitialize");
            }
        };
        SweepOptions options;
        options.start = QueriedMachine();
        Sweep(operation, check, options);
    }
}

}  // namespace
