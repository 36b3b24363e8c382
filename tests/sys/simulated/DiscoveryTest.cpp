// The adapter tree filled from the simulated machine, and the fill given up at any of its calls.
#include "common/sys/NicDiscovery.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;

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
Outcome FillReplay(const Entries& entries) {
    std::size_t step = 0;
    for (const machine::TraceEntry& entry : entries) {
        const std::string& function = entry.function;
        step += function == "CoUninitialize" ? 1 : 0;
        const std::uint32_t code = CodeOf(entry);
        if (!entry.failed) {
            continue;
        }
        if (EndsWmi(entry, false)) {
            return WmiFailure(kSteps[step].message, kSteps[step].line, code);
        }
        if (step == kAfterDeviceId && function == "RegOpenKeyExA") {
            return RegistryFailure("OpenIntern() - Cannot open key.", 813, 3,
                                   static_cast<std::int32_t>(code));
        }
        if (step == kAfterDeviceId && function == "RegQueryValueExA") {
            return RegistryFailure("ReadString() - Read failed.", 268, 6, 0);
        }
        if (step == kAfterDeviceId && function == "RegCloseKey") {
            return RegistryFailure("Close() - RegCloseKey failed", 184, 2, 0);
        }
    }
    return Success();
}

TEST(AdapterTree, AnyFailingCallEndsTheFillOrLeavesAGap) {
    // List, adapter, address, route, gateways with one, servers with one, suffix.
    constexpr std::size_t kWhole = 9;
    SweepOptions options;
    options.start.adapters.resize(1);
    options.start.adapters[0].staticDns = {"192.0.2.10"};
    options.start.adapters[0].dnsServers = options.start.adapters[0].staticDns;
    options.start.dnsSuffixes = {"lab.example"};
    const Operation operation = [](std::string& outputs) {
        SetLastError(0);
        sys::NicList list;
        const Show show(outputs, [&] { return std::to_string(list.Size()); });
        sys::fillNicList(list);
    };
    std::size_t harmless = 0;
    const auto check = [&](const FaultyRun& run) {
        const Outcome expected = FillReplay(run.Calls());
        EXPECT_EQ(run.outcome, expected);
        if (expected == Success()) {
            ++harmless;
            EXPECT_LE(std::stoul(run.outputs), kWhole);
        } else {
            EXPECT_EQ(run.outputs, "1") << "the adapter that was being made is not in the list";
        }
    };
    Sweep(operation, check, options);
    EXPECT_GT(harmless, 0U);

    const Machine machine(options.start);
    sys::NicList list;
    sys::fillNicList(list);
    EXPECT_EQ(list.Size(), kWhole);
    EXPECT_EQ(sys::findNicIndexByPciLocation(list, 2, 1, 0), 1);
}

}  // namespace
