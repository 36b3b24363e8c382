// The adapter tree filled from the simulated machine, and the fill given up at any of its calls.
#include "common/sys/NicDiscovery.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/util/Strings.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using testing::IsEmpty;

/// The tree as text, one line for each node.
class Writer : public sys::NicInfoVisitor {
public:
    void* VisitNicList(sys::NicList&) override { return Add("list"); }
    void* VisitNicAdapter(sys::NicAdapter& node) override {
        const sys::PciLocation& pci = node.pciLocation;
        return Add(util::Format("adapter %u%s%s '%s' '%s' '%s' '%s' %d:%d @%d.%d.%d", node.index,
                                node.isPci ? " pci" : "", node.dhcpEnabled ? " dhcp" : "",
                                node.macAddress.c_str(), node.caption.c_str(),
                                node.manufacturer.c_str(), node.adapterType.c_str(), pci.vendorId,
                                pci.deviceId, pci.bus, pci.device, pci.function));
    }
    void* VisitIP(sys::IP& node) override {
        return Add("ip " + node.address.ToString() + "/" + node.subnetMask.ToString() + " '" +
                   node.dnsDomain + "' '" + node.dnsHostName + "'");
    }
    void* VisitStaticRoute(sys::StaticRoute& node) override {
        return Add("route " + node.destination.ToString() + "/" + node.mask.ToString() + " " +
                   node.nextHop.ToString() + " " + std::to_string(node.metric));
    }
    void* VisitGateway(sys::Gateway&) override { return Add("gateways"); }
    void* VisitGatewayEntry(sys::GatewayEntry& node) override {
        return Add("gateway " + node.address.ToString());
    }
    void* VisitDNS(sys::DNS& node) override {
        return Add(node.hasStaticServers ? "dns static" : "dns");
    }
    void* VisitDNSServer(sys::DNSServer& node) override {
        return Add("server " + node.address.ToString());
    }
    void* VisitDNSSuffix(sys::DNSSuffix& node) override { return Add("suffix " + node.suffix); }

    std::vector<std::string> lines;

private:
    void* Add(std::string line) {
        lines.push_back(std::move(line));
        return nullptr;
    }
};

std::vector<std::string> Lines(sys::NicList& list) {
    Writer writer;
    for (auto node = list.DepthBegin(); node != list.DepthEnd(); ++node) {
        (*node)->Accept(writer);
    }
    return writer.lines;
}

machine::State WithSuffixes() {
    machine::State state = machine::DefaultState();
    state.dnsSuffixes = {"lab.example"};
    return state;
}

TEST(AdapterTree, IsTheMachinesPicture) {
    Machine machine(WithSuffixes());
    sys::NicList list;
    EXPECT_EQ(machine.Run([&] { sys::fillNicList(list); }), Success());
    const std::vector<std::string> expected = {
        "list",
        "adapter 1 pci dhcp '02:00:00:00:00:01' 'Example Gigabit Adapter' 'Example Networks' "
        "'Ethernet 802.3' 8086:100 @2.1.0",
        "ip 192.0.2.50/255.255.255.0 'lab.example' 'WORKSTATION1'",
        "route 10.20.0.0/255.255.0.0 198.51.100.254 5",
        "gateways",
        "gateway 192.0.2.1",
        "dns",
        "server 192.0.2.10",
        "server 192.0.2.11",
        "suffix lab.example",
        "adapter 2 pci '02:00:00:00:00:02' 'Example Fast Adapter' 'Example Networks' "
        "'Ethernet 802.3' 10:8168 @3.0.0",
        "ip 198.51.100.20/255.255.255.0 '' 'WORKSTATION1'",
        "route 10.20.0.0/255.255.0.0 198.51.100.254 5",
        "gateways",
        "gateway 198.51.100.1",
        "dns static",
        "server 198.51.100.10",
        "suffix lab.example",
        "adapter 7 '' '' '' '' 0:0 @0.0.0",
    };
    EXPECT_EQ(Lines(list), expected);
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 3, 0, 0), 2);
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 2, 1, 1), -1);
    EXPECT_THAT(machine.Leaks(), IsEmpty());
    EXPECT_EQ(machine.LostComBlocks(), 0U);
    EXPECT_THAT(machine->Unexpected(), IsEmpty());
}

TEST(AdapterTree, ATextThatIsNullEndsTheFill) {
    machine::State state = WithSuffixes();
    state.adapters[1].dnsDomain.reset();
    Machine machine(state);
    sys::NicList list;
    EXPECT_EQ(machine.Run([&] { sys::fillNicList(list); }),
              ComFailure(static_cast<std::uint32_t>(DISP_E_TYPEMISMATCH)));
    EXPECT_THAT(machine.Leaks(), IsEmpty());
    EXPECT_EQ(machine.LostComBlocks(), 0U);
}

struct Step {
    const char* message;
    std::int32_t line;
};

/// The queries of a machine with one PCI adapter, in their order.
constexpr Step kSteps[] = {
    {"Wmi query failed to IP enabled devices", 165},
    {"Wmi query failed to get PNP device id", 939},
    {"Wmi DHCP enabled query failed", 225},
    {"Wmi query failed to get MAC address", 733},
    {"Wmi query failed to get NIC type and manufacturer", 807},
    {"Wmi query failed to get NIC caption", 873},
    {"Wmi query failed to get ip address and mask", 297},
    {"Wmi query failed to get DNS domain and computer host name", 595},
    {"Wmi query failed to get static routes", 1037},
    {"Wmi query failed to get gateways", 667},
    {"Wmi query failed to get DNS servers and suffixes", 455},
    {"Wmi query failed to get Setting ID", 521},
};
constexpr std::size_t kAfterDeviceId = 2;

/// The error of the first failed call that a fill may not survive. What cannot be read is passed
/// over, and so is a registry failure while it is asked whether the DNS servers are static.
Outcome Replay(const Entries& entries) {
    std::size_t step = 0;
    for (const machine::TraceEntry& entry : entries) {
        const std::string& function = entry.function;
        step += function == "CoUninitialize" ? 1 : 0;
        if (!entry.failed || CodeOf(entry) == static_cast<std::uint32_t>(RPC_E_TOO_LATE)) {
            continue;
        }
        const auto code = CodeOf(entry);
        if (function == "CoInitializeEx" || function == "CoInitializeSecurity" ||
            function == "CoCreateInstance" || function == "ConnectServer" ||
            function == "ExecQuery") {
            return WmiFailure(kSteps[step].message, kSteps[step].line, code);
        }
        if (step != kAfterDeviceId) {
            continue;
        }
        if (function == "RegOpenKeyExA") {
            return RegistryFailure("OpenIntern() - Cannot open key.", 813, 3,
                                   static_cast<std::int32_t>(code));
        }
        if (function == "RegQueryValueExA") {
            return RegistryFailure("ReadString() - Read failed.", 268, 6, 0);
        }
        if (function == "RegCloseKey") {
            return RegistryFailure("Close() - RegCloseKey failed", 184, 2, 0);
        }
    }
    return Success();
}

TEST(AdapterTree, AnyFailingCallEndsTheFillOrLeavesAGap) {
    SweepOptions options;
    options.start = WithSuffixes();
    options.start.adapters.resize(1);
    options.start.adapters[0].staticDns = {"192.0.2.10"};
    std::vector<std::string> whole;
    {
        const Machine machine(options.start);
        sys::NicList list;
        sys::fillNicList(list);
        whole = Lines(list);
    }
    std::size_t harmless = 0;
    const Operation operation = [](std::string& outputs) {
        SetLastError(0);
        sys::NicList list;
        const Show show(outputs, [&] { return std::to_string(list.Size()); });
        sys::fillNicList(list);
    };
    const auto check = [&](const FaultyRun& run) {
        const Outcome expected = Replay(run.machine.Entries());
        EXPECT_EQ(run.outcome, expected);
        if (expected == Success()) {
            ++harmless;
            EXPECT_LE(std::stoul(run.outputs), whole.size());
        } else {
            EXPECT_EQ(run.outputs, "1") << "the adapter that was being made is not in the list";
        }
    };
    Sweep(operation, check, options);
    EXPECT_GT(harmless, 0U);
}

}  // namespace
