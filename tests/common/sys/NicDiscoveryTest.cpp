#include "common/sys/NicDiscovery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "tests/native/FakeMachine.h"

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
        machine.queries.clear();
        sys::NicList list;
        sys::fillNicList(list);
        return TextOf(list);
    }

    /// The line of the only adapter.
    std::string Adapter(const fake::Adapter& adapter) {
        machine.adapters = {adapter};
        const std::string text = Discovered().substr(5);
        return text.substr(0, text.find('\n'));
    }

    fake::Machine& machine = fake::Reset();
};

fake::Adapter CompleteAdapter() {
    fake::Adapter adapter = fake::PciAdapter(7, 2);
    adapter.dhcpEnabled = true;
    adapter.macAddress = "00:11:22:33:44:55";
    adapter.adapterType = "Ethernet 802.3";
    adapter.manufacturer = "Maker";
    adapter.caption = "[00000007] Fast Ethernet";
    adapter.addresses = {"10.0.0.1", "10.0.0.2"};
    adapter.masks = {"255.0.0.0", "255.255.0.0"};
    adapter.dnsDomain = "corp.example";
    adapter.dnsHostName = "pc1";
    adapter.gateways = {"10.0.0.254", "10.0.0.253"};
    adapter.dnsServers = {"10.0.0.53", "10.0.0.54"};
    adapter.dnsSuffixes = {"corp.example", "example"};
    adapter.settingId = "{GUID}";
    adapter.nameServer = "10.0.0.53";
    return adapter;
}

TEST_F(Discovery, OfAMachineWithoutAdapters) {
    EXPECT_EQ(Discovered(), "list\n");
}

TEST_F(Discovery, ReadsAWholeAdapterInOrder) {
    machine.adapters = {CompleteAdapter()};
    machine.routes = {fake::Route("10.0.0.0", "255.0.0.0", "10.1.1.1", 5),
                      fake::Route("0.0.0.0", "0.0.0.0", "10.1.1.1", 0xFFFFFFFF)};
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
    const std::string device = "PCI\\VEN_8086&DEV_100E&SUBSYS_1\\7";
    const std::vector<std::string> queries = {
        "getIpEnabledAdapters()",
        "getPnpDeviceId(7)",
        "readLocationInformation(" + device + ")",
        "getDhcpEnabled(7)",
        "getMacAddress(7)",
        "getAdapterTypeAndManufacturer(7)",
        "getCaption(7)",
        "getIpAddressAndMask(7)",
        "getDnsDomainAndHostName(7)",
        "getStaticRoutes()",
        "getGateways(7)",
        "getDnsServersAndSuffixes(7)",
        "getSettingId(7)",
        "readNameServer({GUID})",
    };
    EXPECT_EQ(machine.queries, queries);
}

TEST_F(Discovery, KeepsTheMachinesOrderAndLittleOfWhatIsNotPci) {
    fake::Adapter bare = CompleteAdapter();
    bare.index = 12;
    bare.pnpDeviceId = "ROOT\\NET\\0000";
    fake::Adapter second = fake::PciAdapter(3, 1);
    fake::Adapter nameless;
    nameless.index = 20;
    machine.adapters = {bare, second, nameless, fake::PciAdapter(1, 4)};
    machine.routes = {fake::Route("10.0.0.0", "255.0.0.0", "10.1.1.1", 5)};
    const std::string rest =
        " 0.0.0.0 0.0.0.0 [|]\nroute 10.0.0.0 255.0.0.0 10.1.1.1 5\ngateways\ndns\n";
    EXPECT_EQ(
        Discovered(),
        "list\nadapter 12 0 0 at 0/0/0 [|||]\nadapter 3 pci 8086 100 at 1/0/0 [|||]\nip" + rest +
            "adapter 20 0 0 at 0/0/0 [|||]\nadapter 1 pci 8086 100 at 4/0/0 [|||]\nip" + rest);
    EXPECT_EQ(std::count(machine.queries.begin(), machine.queries.end(), "getCaption(12)"), 0);
    EXPECT_EQ(std::count(machine.queries.begin(), machine.queries.end(), "getStaticRoutes()"), 2);
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
        fake::Adapter adapter = fake::PciAdapter(7, 2);
        adapter.caption = caption;
        EXPECT_EQ(Adapter(adapter), "adapter 7 pci 8086 100 at 2/0/0 [|||" + kept + "]") << caption;
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
        fake::Adapter adapter = fake::PciAdapter(7, 0);
        adapter.pnpDeviceId = id;
        EXPECT_EQ(Adapter(adapter), "adapter 7" + numbers + " at 0/0/0 [|||]") << id;
    }
}

TEST_F(Discovery, ReadsThePlaceFromItsEnd) {
    const std::pair<std::string, std::string> cases[] = {
        {"PCI bus 2, device 1, function 0", "2/1/0"},
        {"@System32\\drivers\\pci.sys,#65536;PCI bus %1, device %2, function %3;(12,31,7)",
         "12/31/7"},
        {"1 2 3 4", "2/3/4"},
        {"5, 6", "0/5/6"},
        {"7 and text", "0/0/7"},
        {"", "0/0/0"},
        {"-3,-2,-1", "3/2/1"},
        {"65536,65537,1", "0/1/1"},  // kept in 16 bits
        {"1,2,99999999999999999999", "1/2/65535"},
    };
    for (const auto& [location, place] : cases) {
        fake::Adapter adapter = fake::PciAdapter(7, 2);
        adapter.locationInformation = location;
        EXPECT_EQ(Adapter(adapter), "adapter 7 pci 8086 100 at " + place + " [|||]") << location;
    }
    fake::Adapter placeless = fake::PciAdapter(7, 2);
    placeless.locationInformation.reset();
    EXPECT_THROW(Adapter(placeless), sys::RegistryError);
}

TEST_F(Discovery, KnowsServersThatWereSetByHand) {
    struct StaticCase {
        const char* what;
        std::string settingId;
        std::optional<std::string> nameServer;
        bool isStatic;
    };
    const StaticCase cases[] = {
        {"a server", "{GUID}", "10.0.0.53", true}, {"a blank", "{GUID}", " ", true},
        {"no server", "{GUID}", "", false},        {"no value", "{GUID}", std::nullopt, false},
        {"no interface", "", "10.0.0.53", false},
    };
    for (const StaticCase& test : cases) {
        machine.adapters = {fake::PciAdapter(7, 2)};
        machine.adapters[0].settingId = test.settingId;
        machine.adapters[0].nameServer = test.nameServer;
        EXPECT_EQ(Discovered().find("static dns") != std::string::npos, test.isStatic) << test.what;
    }
}

TEST_F(Discovery, FindsAnAdapterByItsPlace) {
    machine.adapters = {fake::PciAdapter(7, 2), fake::PciAdapter(8, 2), fake::PciAdapter(9, 3)};
    machine.adapters[2].locationInformation = "PCI bus 3, device 4, function 5";
    sys::NicList list;
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 2, 0, 0), -1);
    sys::fillNicList(list);
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 2, 0, 0), 7);  // the first of two
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 3, 4, 5), 9);
    for (const std::uint32_t bus : {0U, 3U, 65538U, 0xFFFFFFFFU}) {
        EXPECT_EQ(sys::findNicIndexByPciLocation(list, bus, 0, 0), -1) << bus;
    }
}

TEST_F(Discovery, ReadsSixtyFourAdaptersAndTenThousandRoutesOncePerAdapter) {
    machine.routes.assign(10000, fake::Route("10.0.0.0", "255.0.0.0", "10.1.1.1", 5));
    for (std::uint32_t index = 0; index < 64; ++index) {
        machine.adapters.push_back(fake::PciAdapter(index, static_cast<int>(index)));
    }
    sys::NicList list;
    sys::fillNicList(list);
    EXPECT_EQ(list.Size(), 1 + 64 * (4 + 10000U));
    EXPECT_EQ(machine.queries.size(), 1 + 64 * 12U);
}

TEST_F(Discovery, MakesTheProcessesTreeOnceItCanBeRead) {
    machine.adapters = {CompleteAdapter(), fake::PciAdapter(9, 3)};
    machine.routes = {fake::Route("10.0.0.0", "255.0.0.0", "10.1.1.1", 5)};
    const std::string whole = Discovered();
    const std::size_t calls = machine.queries.size();
    for (std::size_t failing = 1; failing <= calls; ++failing) {
        machine.queries.clear();
        machine.onEveryCall = [&] {
            if (machine.queries.size() == failing) {
                throw sys::CWmiError("failed", 1, -5, 0);
            }
        };
        EXPECT_THROW(sys::getNicList(), sys::CWmiError) << failing;
        EXPECT_EQ(machine.queries.size(), failing);
    }
    machine.onEveryCall = nullptr;
    sys::NicList& list = sys::getNicList();
    EXPECT_EQ(TextOf(list), whole);

    machine.queries.clear();
    machine.adapters.clear();
    EXPECT_EQ(&sys::getNicList(), &list);
    EXPECT_EQ(TextOf(list), whole);  // never refreshed
    EXPECT_TRUE(machine.queries.empty());
}

}  // namespace
