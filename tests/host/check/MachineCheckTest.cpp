#include "host/check/MachineCheck.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "machine/model/Routes.h"
#include "tests/host/check/Checked.h"

namespace check_tests {
namespace {

using machine::Condition;
using machine::State;

struct Trap {
    void (*prepare)(State& state);  // the default machine: DHCP, static, and one that is not PCI
    std::string text;
    std::string summary;
    std::vector<std::string> says = {};  // in the message or the remedy of the first finding
};

const std::string kDhcp = "[TCP/IP]\nDescription=A\nDHCP=true\n";
const std::string kLab = "DNS-Server-Count=0\nDNS-SuffixSearchOrder=lab.example\n";
const std::string kOffice =
    "[NicEntry]\nDescription=B\nDHCP=false\nAddress=198.51.100.20\nNetmask=255.255.255.0\n"
    "Gateway=198.51.100.1\n";
const std::string kNoRoutes = "Static-Route-Count=-1\n";
const std::string kRoute =
    "Static-Route-Count=1\nRoute0=10.20.0.0,255.255.0.0,198.51.100.254,,5,\n";

std::string Summary(const host::check::Findings& findings) {
    std::string summary;
    for (const host::check::Finding& finding : findings.List()) {
        summary += (summary.empty() ? "" : ", ") + std::to_string(finding.place.line) + " ";
        summary += finding.code.Text();
        EXPECT_FALSE(finding.remedy.empty()) << finding.code.Text();
    }
    return summary;
}

TEST(CheckOnMachine, WarnsOfEveryTrapWithItsPlaceAndRemedy) {
    const std::string first = kDhcp + kLab + kNoRoutes;
    const std::string moved =
        "[TCP/IP]\nDescription=A\nDHCP=false\nAddress=192.0.2.9\n"
        "Netmask=255.255.255.0\nGateway=192.0.2.1\n" +
        kLab;
    const Trap traps[] = {
        {[](State&) {}, first + kOffice + kLab + kNoRoutes, ""},
        {[](State& state) { state.adapters.resize(1); }, first + kOffice + kLab + kNoRoutes,
         "8 too-few-adapters"},
        {[](State& state) { state.adapters[0].condition = Condition::kUnplugged; },
         first + kOffice + kLab + kNoRoutes,
         "2 shifted-adapter, 8 too-few-adapters",
         {"gets adapter 2 \"Ethernet 2\"", "adapter 1 \"Ethernet\" is unplugged"}},
        {[](State& state) {
             state.adapters[0].pnpDeviceId = "VMBUS\\{F8615163}";
             state.adapters[1].condition = Condition::kBehindSwitch;
         },
         first, "2 no-pci-adapter"},
        {[](State& state) { state.adapters[1].gateways->push_back("fe80::1"); },
         first,
         "2 ipv6-gateway",
         {"fails with 11001", "routerdiscovery"}},
        {[](State& state) {
             state.adapters[0].gateways->push_back("2620:9b::1");  // of DHCP: nothing sets them
             state.adapters[1].gateways->push_back("2620:9b::1");
         },
         first + kOffice + kLab + kNoRoutes,
         "12 ipv6-gateway",
         {"sets these on every request"}},
        {[](State& state) { state.adapters[0].ipAddress = {{"fe80::2"}}; }, first,
         "2 ipv6-address"},
        {[](State& state) {
             state.registry = {{"SOFTWARE\\Policies\\Microsoft\\Windows NT\\DNSClient",
                                {machine::RegistryValue::Text("SearchList", "a.example,b")}}};
         },
         first,
         "5 policy-suffixes",
         {"DNS-SuffixSearchOrder=a.example,b"}},
        {[](State& state) {
             state.adapters[0].dhcpEnabled = false;
             state.adapters[0].gateways = {{"192.0.2.200"}};
         },
         first,
         "3 gateway-left-behind",
         {"route DELETE 0.0.0.0 mask 0.0.0.0 192.0.2.200"}},
        {[](State& state) { state.adapters[0].dhcpEnabled = false; },
         moved + kNoRoutes,
         "4 static-on-static",
         {"on some versions of Windows EnableStatic answers 81"}},
        {[](State& state) {
             state.adapters[0].dhcpEnabled = false;
             state.system.versions.staticOnStatic = 81;
         },
         moved + kNoRoutes,
         "4 static-on-static",
         {"on this Windows"}},
        {[](State&) {}, moved + kRoute, "10 default-routes-next-time", {"192.0.2.1"}},
        {[](State& state) {
             state.adapters[0].dhcpEnabled = false;
             machine::model::PersistGateways(state);
         },
         first + kOffice + kLab + kRoute, "16 default-routes"},
        {[](State&) {},
         first + kOffice + kLab +
             "Static-Route-Count=1\nRoute0=0.0.0.0,0.0.0.0,198.51.100.1,,-1,\n",
         "16 refused-route",
         {"exits with 0"}},
        {[](State& state) {
             state.routes.push_back({"0.0.0.0", "128.0.0.0", "198.51.100.9", 5});
         },
         first + kOffice + kLab + kRoute,
         "16 default-routes",
         {"0.0.0.0 mask 128.0.0.0 via 198.51.100.9 metric 5, and the list has it not"}},
        {[](State& state) {
             state.routes.push_back({"10.20.0.0", "255.0.0.0", "198.51.100.9", 5});
         },
         first + kOffice + kLab + kRoute,
         "16 shared-destination",
         {"that of the list too, which only the next request adds"}},
        {[](State& state) {
             state.routes.push_back({"10.20.0.0", "255.0.0.0", "198.51.100.9", 5});
             state.system.versions.refusedRoute = 1;
         },
         first + kOffice + kLab + "Static-Route-Count=0\n",
         "15 shared-destination",
         {"the next deletion finds none, and route exits with 1"}},
        {[](State& state) {
             state.adapters[0].dhcpEnabled = false;
             state.adapters[0].gateways = state.adapters[1].gateways;
         },
         first + kOffice.substr(0, kOffice.rfind('1')) + "254\n" + kLab + kRoute,
         "3 gateway-left-behind, 16 default-routes-next-time"},
        {[](State& state) { state.system.elevated = false; },
         first,
         "2 not-elevated",
         {"rename, join and leave 5"}},
    };
    for (const Trap& trap : traps) {
        SCOPED_TRACE(trap.text + trap.summary);
        State state = machine::DefaultState();
        trap.prepare(state);
        const Checked checked(trap.text);
        host::check::Findings findings;
        host::check::CheckOnMachine(checked.File(), state, findings);
        EXPECT_EQ(Summary(findings), trap.summary);
        for (const std::string& words : trap.says) {
            ASSERT_FALSE(findings.List().empty());
            const host::check::Finding& finding = findings.List().front();
            EXPECT_NE((finding.message + "; " + finding.remedy).find(words), std::string::npos)
                << finding.message << "; " << finding.remedy;
        }
    }
}

}  // namespace
}  // namespace check_tests
