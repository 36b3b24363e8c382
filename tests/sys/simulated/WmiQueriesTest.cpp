// The queries on the simulated machine: what they ask for, what they make of the answer, and
// what is left of them when any of their platform calls fails.
#include "common/sys/WmiQueries.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>
#include <wbemcli.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "common/util/Strings.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using Addresses = std::vector<ipc::IPv4Address>;
using Texts = std::vector<std::string>;

/// What an output holds before the query, and what the property makes of it.
struct Property {
    const char* name;
    std::string kept;
    std::string read;
};

struct Query {
    const char* text;
    const char* message;
    std::int32_t line;
    std::vector<std::vector<Property>> rows;
    std::function<sys::Result(std::string&)> run;
    bool isList;  // reads every row; each adds to the outputs
};

void PrintTo(const Query& query, std::ostream* out) {
    *out << query.text;
}

template <class Elements, class Text>
std::string Join(const Elements& elements, const char* separator, Text text) {
    std::string joined;
    for (const auto& element : elements) {
        const std::string part = text(element);
        joined += (joined.empty() || part.empty() ? "" : separator) + part;
    }
    return joined;
}

std::string Shown(const std::string& text) {
    return text;
}
std::string Shown(bool value) {
    return value ? "yes" : "no";
}
std::string Shown(const ipc::IPv4Address& address) {
    return address.ToString();
}
std::string Shown(const std::vector<std::uint32_t>& indexes) {
    return Join(indexes, " | ", [](std::uint32_t index) { return std::to_string(index); });
}
std::string Shown(const std::vector<sys::RouteRecord>& routes) {
    return Join(routes, " | ", [](const sys::RouteRecord& route) {
        return Shown(route.destination) + "/" + Shown(route.mask) + "/" + Shown(route.nextHop) +
               "/" + std::to_string(route.metric);
    });
}
template <class Element>
std::string Shown(const std::vector<Element>& elements) {
    return "[" + Join(elements, ",", [](const Element& element) { return Shown(element); }) + "]";
}

/// A query whose outputs hold `before` and are shown with slashes between them.
template <class Get, class Outputs, class... Index>
std::function<sys::Result(std::string&)> Reads(Get get, Outputs before, Index... index) {
    return [=](std::string& shown) {
        Outputs outputs = before;
        const Show show(shown, [&] {
            return std::apply(
                [](const auto&... output) {
                    return Join(Texts{Shown(output)...}, "/",
                                [](const auto& text) { return text; });
                },
                outputs);
        });
        return std::apply([&](auto&... output) { return get(index..., output...); }, outputs);
    };
}

const auto kOneText = std::tuple(std::string("kept"));
const auto kTwoTexts = std::tuple(std::string("kept"), std::string("kept too"));

machine::State QueriedMachine() {
    machine::State state = machine::DefaultState();
    state.dnsSuffixes = {"lab.example", "corp.example"};
    state.routes = {{"10.20.0.0", "255.255.0.0", "198.51.100.254", 5},
                    {"10.30.0.0", "255.255.0.0", "198.51.100.253", -1}};
    return state;
}

Query Row(const char* text, const char* message, std::int32_t line,
          std::vector<std::vector<Property>> rows, std::function<sys::Result(std::string&)> run,
          bool isList = false) {
    return {text, message, line, std::move(rows), std::move(run), isList};
}

std::vector<Property> Route(const char* destination, const char* nextHop, const char* metric) {
    return {{"Destination", "0.0.0.0", destination},
            {"Mask", "0.0.0.0", "255.255.0.0"},
            {"NextHop", "0.0.0.0", nextHop},
            {"Metric1", "0", metric}};
}

std::vector<Query> Queries() {
    const ipc::IPv4Address address(std::string("1.2.3.4"));
    const ipc::IPv4Address mask(std::string("5.6.7.8"));
    return {
        Row("select Name from Win32_ComputerSystem", "Wmi query failed to get computer name", 101,
            {{{"Name", "kept", "WORKSTATION1"}}}, Reads(sys::getComputerName, kOneText)),
        Row("select Index, SettingID from Win32_NetworkAdapterConfiguration where IPEnabled=true",
            "Wmi query failed to IP enabled devices", 165,
            {{{"Index", "", "1"}}, {{"Index", "", "2"}}, {{"Index", "", "7"}}},
            Reads(sys::getIpEnabledAdapters, std::tuple(std::vector<std::uint32_t>())), true),
        Row("select DHCPEnabled from Win32_NetworkAdapterConfiguration where Index=1",
            "Wmi DHCP enabled query failed", 225, {{{"DHCPEnabled", "no", "yes"}}},
            Reads(sys::getDhcpEnabled, std::tuple(false), 1U)),
        Row("select IPAddress, IPSubnet from Win32_NetworkAdapterConfiguration where Index=1",
            "Wmi query failed to get ip address and mask", 297,
            {{{"IPAddress", "1.2.3.4", "192.0.2.50"}, {"IPSubnet", "5.6.7.8", "255.255.255.0"}}},
            Reads(sys::getIpAddressAndMask, std::tuple(address, mask), 1U)),
        Row("select DNSServerSearchOrder, DNSDomainSuffixSearchOrder from "
            "Win32_NetworkAdapterConfiguration where Index=1",
            "Wmi query failed to get DNS servers and suffixes", 455,
            {{{"DNSServerSearchOrder", "[]", "[192.0.2.10,192.0.2.11]"},
              {"DNSDomainSuffixSearchOrder", "[]", "[lab.example,corp.example]"}}},
            Reads(sys::getDnsServersAndSuffixes, std::tuple(Addresses(), Texts()), 1U)),
        Row("select SettingID from Win32_NetworkAdapterConfiguration where Index=2",
            "Wmi query failed to get Setting ID", 521,
            {{{"SettingID", "kept", "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E02}"}}},
            Reads(sys::getSettingId, kOneText, 2U)),
        Row("select DNSDomain, DNSHostName from Win32_NetworkAdapterConfiguration where Index=1",
            "Wmi query failed to get DNS domain and computer host name", 595,
            {{{"DNSDomain", "kept", "lab.example"}, {"DNSHostName", "kept too", "WORKSTATION1"}}},
            Reads(sys::getDnsDomainAndHostName, kTwoTexts, 1U)),
        Row("select DefaultIPGateway from Win32_NetworkAdapterConfiguration where Index=2",
            "Wmi query failed to get gateways", 667,
            {{{"DefaultIPGateway", "[]", "[198.51.100.1]"}}},
            Reads(sys::getGateways, std::tuple(Addresses()), 2U)),
        Row("select MACAddress from Win32_NetworkAdapterConfiguration where Index=1",
            "Wmi query failed to get MAC address", 733,
            {{{"MACAddress", "kept", "02:00:00:00:00:01"}}},
            Reads(sys::getMacAddress, kOneText, 1U)),
        Row("select AdapterType, Manufacturer from Win32_NetworkAdapter where Index=1",
            "Wmi query failed to get NIC type and manufacturer", 807,
            {{{"AdapterType", "kept", "Ethernet 802.3"},
              {"Manufacturer", "kept too", "Example Networks"}}},
            Reads(sys::getAdapterTypeAndManufacturer, kTwoTexts, 1U)),
        Row("select Caption from Win32_NetworkAdapter where Index=1",
            "Wmi query failed to get NIC caption", 873,
            {{{"Caption", "kept", "[00000001] Example Gigabit Adapter"}}},
            Reads(sys::getCaption, kOneText, 1U)),
        Row("select PNPDeviceID from Win32_NetworkAdapter where Index=7",
            "Wmi query failed to get PNP device id", 939,
            {{{"PNPDeviceID", "kept", "ROOT\\VIRTUALNET\\0000"}}},
            Reads(sys::getPnpDeviceId, kOneText, 7U)),
        Row("select Destination, Mask, NextHop, Metric1 from Win32_IP4PersistedRouteTable",
            "Wmi query failed to get static routes", 1037,
            {Route("10.20.0.0", "198.51.100.254", "5"),
             Route("10.30.0.0", "198.51.100.253", "4294967295")},
            Reads(sys::getStaticRoutes, std::tuple(std::vector<sys::RouteRecord>())), true),
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

/// The result and outputs that the documented walk over the rows makes of the calls that were
/// answered.
std::string QueryReplay(const Query& query, const Entries& entries) {
    std::vector<Texts> rows;
    sys::Result result = 0;
    for (const machine::TraceEntry& entry : entries) {
        const auto code = entry.failed ? static_cast<sys::Result>(CodeOf(entry)) : 0;
        if (entry.function == "Next") {
            result = entry.failed ? 0 : result;  // thrown: the query returns nothing
            if (!entry.failed && rows.size() < query.rows.size()) {
                rows.emplace_back();
            }
        } else if (entry.function == "Get") {
            const Property& property = query.rows[rows.size() - 1][rows.back().size()];
            rows.back().push_back(entry.failed ? property.kept : property.read);
            result = code;
        }
    }
    if (rows.empty() && !query.isList) {
        rows.emplace_back();
        for (const Property& property : query.rows[0]) {
            rows.back().push_back(property.kept);
        }
    }
    return std::to_string(result) + " " + Join(rows, " | ", [](const Texts& row) {
               return Join(row, "/", [](const std::string& text) { return text; });
           });
}

class WmiQueries : public testing::TestWithParam<Query> {
protected:
    static void Run(std::string& outputs) {
        std::string shown;
        sys::Result result = 0;
        const Show show(outputs, [&] { return std::to_string(result) + " " + shown; });
        result = GetParam().run(shown);
    }
};

TEST_P(WmiQueries, AskInTheFixedWordsAndReadTheirPropertiesInOrder) {
    Machine machine(QueriedMachine());
    std::string outputs;
    EXPECT_EQ(machine.Run([&] { Run(outputs); }), Success());
    EXPECT_EQ(outputs, QueryReplay(GetParam(), machine.Calls()));
    EXPECT_THAT(machine.Texts(), testing::ElementsAreArray(ExpectedCalls(GetParam())));
    EXPECT_THAT(
        machine.LastNames(3),
        testing::ElementsAre("IWbemLocator::Release", "IWbemServices::Release", "CoUninitialize"));
    EXPECT_EQ(machine->GetState(), QueriedMachine()) << "a query changed the machine";
}

TEST_P(WmiQueries, EndAsDocumentedWhateverCallFails) {
    const Query& query = GetParam();
    const auto check = [&query](const FaultyRun& run) {
        // A connection whose last step failed is one all the same, and a property that cannot be
        // read keeps its value.
        const auto last = std::ranges::find_if(run.Calls(), [](const machine::TraceEntry& call) {
            return call.failed && EndsWmi(call, false);
        });
        EXPECT_EQ(run.outcome, last == run.Calls().end()
                                   ? Success()
                                   : WmiFailure(query.message, query.line, CodeOf(*last)));
        EXPECT_EQ(run.outputs, QueryReplay(query, run.Calls()));
        EXPECT_EQ(run.Calls().back().function, "CoUninitialize");
    };
    SweepOptions options;
    options.start = QueriedMachine();
    Sweep(Run, check, options);
}

INSTANTIATE_TEST_SUITE_P(Each, WmiQueries, testing::ValuesIn(Queries()));

}  // namespace
