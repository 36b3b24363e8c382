#include "common/sys/nic/NicDiscovery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "tests/native/OnMachine.h"

namespace {

/// Writes every node that it visits: "adapter 7 pci 8086 100 at 2/1/0 ...".
class TextVisitor : public sys::NicInfoVisitor {
public:
    std::string text;

    void* VisitNicList(sys::NicList& node) override { return Write(node, "list"); }
    void* VisitNicAdapter(sys::NicAdapter& node) override {
        const sys::PciLocation& pci = node.pciLocation;
        return Write(node,
                     util::Format("adapter %u%s %d %d at %d/%d/%d %s[%s|%s|%s|%s]", node.index,
                                  node.isPci ? " pci" : "", pci.vendorId, pci.deviceId, pci.bus,
                                  pci.device, pci.function, node.dhcpEnabled ? "dhcp " : "",
                                  node.macAddress.c_str(), node.adapterType.c_str(),
                                  node.manufacturer.c_str(), node.caption.c_str()));
    }
    void* VisitIP(sys::IP& node) override {
        return Write(node, "ip " + node.address.ToString() + " " + node.subnetMask.ToString() +
                               " [" + node.dnsDomain + "|" + node.dnsHostName + "]");
    }
    void* VisitStaticRoute(sys::StaticRoute& node) override {
        return Write(node, "route " + node.destination.ToString() + " " + node.mask.ToString() +
                               " " + node.nextHop.ToString() + " " + std::to_string(node.metric));
    }
    void* VisitGateway(sys::Gateway& node) override { return Write(node, "gateways"); }
    void* VisitGatewayEntry(sys::GatewayEntry& node) override {
        return Write(node, "gateway " + node.address.ToString());
    }
    void* VisitDNS(sys::DNS& node) override {
        return Write(node, node.hasStaticServers ? "static dns" : "dns");
    }
    void* VisitDNSServer(sys::DNSServer& node) override {
        return Write(node, "server " + node.address.ToString());
    }
    void* VisitDNSSuffix(sys::DNSSuffix& node) override {
        return Write(node, "suffix " + node.suffix);
    }

private:
    void* Write(util::CompositeNode& node, const std::string& line) {
        text += line + "\n";
        return &node;
    }
};

class StrangeVisitor : public util::CompositeVisitor {};

std::string TextOf(sys::NicList& list) {
    TextVisitor visitor;
    StrangeVisitor stranger;
    std::for_each(list.DepthBegin(), list.DepthEnd(), [&](util::CompositeNode* node) {
        EXPECT_EQ(node->Accept(visitor), node);
        EXPECT_EQ(node->Accept(stranger), nullptr);
    });
    return visitor.text;
}

class Discovery : public testing::Test {
protected:
    std::string Discovered() {
        machine.trace.Clear();
        sys::NicList list;
        sys::fillNicList(list);
        return TextOf(list);
    }

    /// The line of the only adapter.
    std::string Line(const machine::Adapter& adapter) {
        machine.state.adapters = {adapter};
        const std::string text = Discovered().substr(5);
        return text.substr(0, text.find('\n'));
    }

    native::Machine& machine = native::Reset({});
};

machine::Adapter CompleteAdapter() {
    machine::Adapter adapter = native::PciAdapter(7, 2);
    adapter.dhcpEnabled = true;
    adapter.macAddress = "00:11:22:33:44:55";
    adapter.adapterType = "Ethernet 802.3";
    adapter.manufacturer = "Maker";
    adapter.caption = "[00000007] Fast Ethernet";
    adapter.ipAddress = {{"10.0.0.1", "10.0.0.2"}};
    adapter.ipSubnet = {{"255.0.0.0", "255.255.0.0"}};
    adapter.dnsDomain = "corp.example";
    adapter.dnsHostName = "pc1";
    adapter.gateways = {{"10.0.0.254", "10.0.0.253"}};
    adapter.dnsServers = {{"10.0.0.53", "10.0.0.54"}};
    adapter.settingId = "{GUID}";
    adapter.staticDns = {"10.0.0.53"};
    return adapter;
}

TEST_F(Discovery, ReadsAWholeAdapterInOrder) {
    machine.state.adapters = {CompleteAdapter()};
    machine.state.dnsSuffixes = {"corp.example", "example"};
    machine.state.routes = {{"10.0.0.0", "255.0.0.0", "10.1.1.1", 5},
                            {"0.0.0.0", "0.0.0.0", "10.1.1.1", -1}};
    EXPECT_EQ(Discovered(),
              "list\n"
              "adapter 7 pci 8086 100 at 2/0/0 dhcp [00:11:22:33:44:55|Ethernet 802.3|Maker|Fast "
              "Ethernet]\n"
              "ip 10.0.0.1 255.0.0.0 [corp.example|pc1]\n"
              "route 10.0.0.0 255.0.0.0 10.1.1.1 5\n"
              "route 0.0.0.0 0.0.0.0 10.1.1.1 4294967295\n"
              "gateways\ngateway 10.0.0.254\ngateway 10.0.0.253\n"
              "static dns\nserver 10.0.0.53\nserver 10.0.0.54\nsuffix corp.example\n"
              "suffix example\n");
    std::string asked;
    for (const machine::TraceEntry& call : machine.trace) {
        const std::string& text = call.arguments.back().second;
        asked +=
            (call.function == "ExecQuery" ? text.substr(7, text.find(" from") - 7) : text) + "|";
    }
    EXPECT_EQ(
        asked,
        "Index, SettingID|PNPDeviceID|LocationInformation|DHCPEnabled|MACAddress|AdapterType, "
        "Manufacturer|Caption|IPAddress, IPSubnet|DNSDomain, DNSHostName|Destination, Mask, "
        "NextHop, Metric1|DefaultIPGateway|DNSServerSearchOrder, DNSDomainSuffixSearchOrder|"
        "SettingID|NameServer|");
}

TEST_F(Discovery, KeepsTheMachinesOrderAndLittleOfWhatIsNotPci) {
    machine::Adapter bare = CompleteAdapter();
    bare.index = 12;
    bare.pnpDeviceId = "ROOT\\NET\\0000";
    machine::Adapter nameless;
    nameless.index = 20;
    machine.state.adapters = {bare, native::PciAdapter(3, 1), nameless, native::PciAdapter(1, 4)};
    machine.state.routes = {{"10.0.0.0", "255.0.0.0", "10.1.1.1", 5}};
    const std::string rest =
        " 0.0.0.0 0.0.0.0 [|]\nroute 10.0.0.0 255.0.0.0 10.1.1.1 5\ngateways\ndns\n"
        "suffix corp.example\n";
    EXPECT_EQ(
        Discovered(),
        "list\nadapter 12 0 0 at 0/0/0 [|||]\nadapter 3 pci 8086 100 at 1/0/0 [|||]\nip" + rest +
            "adapter 20 0 0 at 0/0/0 [|||]\nadapter 1 pci 8086 100 at 4/0/0 [|||]\nip" + rest);
}

TEST_F(Discovery, CutsCaptions) {
    const std::pair<std::string, std::string> cases[] = {
        {"[00000007] Fast Ethernet", "Fast Ethernet"},
        {"[00000007]Fast Ethernet", "ast Ethernet"},  // the cut takes two characters
        {"Fast Ethernet", "thernet"},
        {"Ethernet", "thernet"},  // no mark: the first character goes
        {" x", ""},
        {"x]", ""},
        {"]ab", "b"},
        {"", ""},
        {"a ]b", "b"},
    };
    for (const auto& [caption, kept] : cases) {
        machine::Adapter adapter = native::PciAdapter(7, 2);
        adapter.caption = caption;
        EXPECT_EQ(Line(adapter), "adapter 7 pci 8086 100 at 2/0/0 [|||" + kept + "]") << caption;
    }
}

TEST_F(Discovery, ReadsDeviceIdsAsDecimalNumbers) {
    const std::pair<std::string, std::string> cases[] = {
        {"PCI\\VEN_8086&DEV_100E&SUBSYS_1", " pci 8086 100"},
        {"PCI\\VEN_8086&DEV_123456&", " pci 8086 57920"},
        {"PCI\\VEN_8086", " pci 8086 0"},
        {"PCI\\VEN_80861234567", " pci 65535 67"},  // read past its end, and kept in 16 bits
        {"PCI\\DEV_100E&VEN_1234&DEV_5678", " pci 1234 5678"},
        {"PCIVEN_8086&DEV_100E", " pci 0 0"},  // searched from the fifth character on
        {"PCI", " pci 0 0"},
        {"pci\\VEN_8086&DEV_100E", " 0 0"},
        {"", " 0 0"},
    };
    for (const auto& [id, numbers] : cases) {
        machine::Adapter adapter = native::PciAdapter(7, 0);
        adapter.pnpDeviceId = id;
        EXPECT_EQ(Line(adapter), "adapter 7" + numbers + " at 0/0/0 [|||]") << id;
    }
}

TEST_F(Discovery, ReadsThePlaceFromItsEnd) {
    const std::pair<std::string, std::string> cases[] = {
        {"PCI bus 2, device 1, function 0", "2/1/0"},
        {"@System32\\drivers\\pci.sys,#65536;PCI bus %1, device %2, function %3;(12,31,7)",
         "12/31/7"},
        {"@System32\\drivers\\pci.sys,#65536;PCI-\xF8\xE8\xED\xE0 %1, %2, %3;(6,0,0)", "6/0/0"},
        {"Virtual PCI Bus Slot 2 Serial 1", "0/2/1"},
        {"7 and text", "0/0/7"},
        {"", "0/0/0"},
        {"-3,-2,-1", "3/2/1"},
        {"65536,65537,1", "0/1/1"},  // kept in 16 bits
        {"1,2,99999999999999999999", "1/2/65535"},
    };
    for (const auto& [location, place] : cases) {
        machine::Adapter adapter = native::PciAdapter(7, 2);
        adapter.pciLocation = location;
        EXPECT_EQ(Line(adapter), "adapter 7 pci 8086 100 at " + place + " [|||]") << location;
    }
    machine::Adapter placeless = native::PciAdapter(7, 2);
    placeless.pciLocation.reset();
    EXPECT_THROW(Line(placeless), sys::RegistryError);
}

TEST_F(Discovery, KnowsServersThatWereSetByHand) {
    const std::string kInterfaces =
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\";
    machine.state.registry = {
        {kInterfaces + "{A}", {machine::RegistryValue::Text("NameServer", "10.0.0.53")}},
        {kInterfaces + "{B}", {machine::RegistryValue::Text("NameServer", " ")}},
        {kInterfaces + "{C}", {machine::RegistryValue::Text("NameServer", "")}}};
    const std::pair<const char*, bool> cases[] = {
        {"{A}", true}, {"{B}", true}, {"{C}", false}, {"{D}", false}, {"", false}};
    for (const auto& [settingId, isStatic] : cases) {
        machine.state.adapters = {native::PciAdapter(7, 2)};
        machine.state.adapters[0].settingId = settingId;
        EXPECT_EQ(Discovered().find("static dns") != std::string::npos, isStatic) << settingId;
    }
}

TEST_F(Discovery, MakesTheProcessesTreeOnceItCanBeRead) {
    machine.state.adapters = {CompleteAdapter(), native::PciAdapter(9, 3)};
    machine.state.routes = {{"10.0.0.0", "255.0.0.0", "10.1.1.1", 5}};
    const std::string whole = Discovered();
    const std::size_t queries = machine.trace.Count("ExecQuery");
    for (std::size_t failing = 1; failing <= queries; ++failing) {
        machine.faults = machine::FaultPlan::Parse("ExecQuery#" + std::to_string(failing));
        EXPECT_THROW(sys::getNicList(), sys::CWmiError) << failing;
    }
    machine.faults = {};
    sys::NicList& list = sys::getNicList();
    EXPECT_EQ(TextOf(list), whole);

    machine.trace.Clear();
    machine.state.adapters.clear();
    EXPECT_EQ(&sys::getNicList(), &list);
    EXPECT_EQ(TextOf(list), whole);  // never refreshed
    EXPECT_EQ(machine.trace.Size(), 0U);
}

}  // namespace
