// The adapter tree filled from the simulated machine, and the fill given up at any of its calls.
#include "common/sys/NicDiscovery.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;

TEST(AdapterTree, AnyFailingCallEndsTheFillOrLeavesAGap) {
    // List, adapter, address, route, gateways with one, servers with one, suffix.
    constexpr std::size_t kWhole = 9;
    SweepOptions options;
    options.start.adapters.resize(1);
    options.start.adapters[0].staticDns = {"192.0.2.10"};
    options.start.adapters[0].dnsServers = options.start.adapters[0].staticDns;
    options.start.dnsSuffixes = {"lab.example"};
    const Operation operation = [](std::string& outputs) {
        sys::NicList list;
        const Show show(outputs, [&] { return std::to_string(list.Size()); });
        sys::fillNicList(list);
    };
    std::size_t harmless = 0;
    const auto check = [&](const FaultyRun& run) {
        if (run.outcome == Success()) {
            ++harmless;
            EXPECT_LE(std::stoul(run.outputs), kWhole);
            return;
        }
        EXPECT_TRUE(run.outcome.type == "sys::CWmiError" ||
                    run.outcome.type == "sys::RegistryError")
            << run.outcome;
        EXPECT_EQ(run.outputs, "1") << "the adapter that was being made is not in the list";
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
