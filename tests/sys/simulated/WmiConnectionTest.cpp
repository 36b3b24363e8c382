// Connections to WMI on the simulated machine, and answers out of the ordinary.
#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "common/sys/WmiQueries.h"
#include "tests/sys/simulated/Machine.h"

namespace {

using namespace sys_tests;
using testing::IsEmpty;

TEST(WmiConnection, GivesUpTheLocatorThenTheServicesThenCom) {
    Machine machine;
    std::string name;
    machine.Run([&] { sys::getComputerName(name); });
    const std::vector<std::string> names = machine.CallNames();
    ASSERT_GE(names.size(), 3U);
    EXPECT_THAT(
        std::vector<std::string>(names.end() - 3, names.end()),
        testing::ElementsAre("IWbemLocator::Release", "IWbemServices::Release", "CoUninitialize"));
}

TEST(WmiConnection, SecurityThatTheProcessHasSetAlreadyIsNoFailure) {
    // Set by the agent, or by the first connection of the process for the second one.
    for (const bool setByAgent : {true, false}) {
        machine::State state = machine::DefaultState();
        state.system.comSecuritySet = setByAgent;
        Machine machine(state);
        for (const bool first : {true, false}) {
            std::string name;
            EXPECT_EQ(machine.Run([&] { sys::getComputerName(name); }), Success());
            EXPECT_EQ(name, "WORKSTATION1");
            const machine::TraceEntry& security = machine.Entries()[1];
            EXPECT_EQ(security.function, "CoInitializeSecurity");
            EXPECT_EQ(security.failed, setByAgent || !first);
        }
    }
}

TEST(WmiConnection, AThreadInAnotherApartmentCannotConnect) {
    Machine machine;
    std::string name = "kept";
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    EXPECT_EQ(machine.Run([&] { sys::getComputerName(name); }),
              WmiFailure("Wmi query failed to get computer name", 101,
                         static_cast<std::uint32_t>(RPC_E_CHANGED_MODE)));
    EXPECT_EQ(name, "kept");
    // The connection leaves COM although it never joined it: the thread's own stay is over.
    EXPECT_EQ(machine.CallNames().back(), "CoUninitialize");
    EXPECT_THAT(machine.Leaks(), IsEmpty());
}

TEST(WmiAnswers, AnAdapterThatDoesNotExistLeavesTheOutputsAlone) {
    Machine machine;
    bool enabled = true;
    std::string text = "kept";
    std::vector<ipc::IPv4Address> gateways;
    EXPECT_EQ(machine.Run([&] {
        EXPECT_EQ(sys::getDhcpEnabled(0xFFFFFFFF, enabled), 0);
        EXPECT_EQ(sys::getCaption(3, text), 0);
        EXPECT_EQ(sys::getGateways(3, gateways), 0);
    }),
              Success());
    EXPECT_TRUE(enabled);
    EXPECT_EQ(text, "kept");
    EXPECT_TRUE(gateways.empty());
    EXPECT_THAT(machine.Calls("ExecQuery"),
                testing::Contains("IWbemServices::ExecQuery query=select DHCPEnabled from "
                                  "Win32_NetworkAdapterConfiguration where Index=4294967295 "
                                  "flags=48"));
    EXPECT_EQ(machine.Entries().size(), machine->GetTrace().Size());
}

TEST(WmiAnswers, PropertiesWithoutAValue) {
    machine::State state = machine::DefaultState();
    machine::Adapter bare;
    bare.index = 1;
    bare.connectionName = "bare";
    state.adapters = {bare};
    state.routes.clear();
    Machine machine(state);
    const Outcome noText = ComFailure(static_cast<std::uint32_t>(DISP_E_TYPEMISMATCH));
    const Outcome noList = RefusedArgument("Invalid argument passed to attach()");

    bool enabled = true;
    std::string text = "kept";
    std::string other = "kept";
    ipc::IPv4Address address(std::string("1.2.3.4"));
    ipc::IPv4Address mask;
    std::vector<ipc::IPv4Address> addresses;
    std::vector<std::string> texts;
    std::vector<sys::RouteRecord> routes;
    const std::pair<std::function<void()>, Outcome> cases[] = {
        {[&] { sys::getDhcpEnabled(1, enabled); }, Success()},
        {[&] { sys::getGateways(1, addresses); }, Success()},
        {[&] { sys::getDnsServersAndSuffixes(1, addresses, texts); }, Success()},
        {[&] { sys::getStaticRoutes(routes); }, Success()},
        {[&] { sys::getIpAddressAndMask(1, address, mask); }, noList},
        {[&] { sys::getMacAddress(1, text); }, noText},
        {[&] { sys::getSettingId(1, text); }, noText},
        {[&] { sys::getPnpDeviceId(1, text); }, noText},
        {[&] { sys::getDnsDomainAndHostName(1, text, other); }, noText},
        {[&] { sys::getAdapterTypeAndManufacturer(1, text, other); }, noText},
    };
    for (const auto& [query, expected] : cases) {
        EXPECT_EQ(machine.Run(query), expected) << machine.Calls("ExecQuery").front();
        EXPECT_THAT(machine.Leaks(), IsEmpty());
        EXPECT_EQ(machine.LostComBlocks(), 0U);
    }
    EXPECT_FALSE(enabled) << "null is not true";
    EXPECT_TRUE(addresses.empty());
    EXPECT_TRUE(texts.empty());
    EXPECT_TRUE(routes.empty());
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(other, "kept");
    EXPECT_EQ(address.ToString(), "1.2.3.4");
}

TEST(WmiAnswers, AHostNameInAnAddressListIsLookedUp) {
    machine::State state = machine::DefaultState();
    state.adapters[0].gateways = machine::TextList{"gateway.lab.example", "192.0.2.9"};
    state.adapters[1].gateways = machine::TextList{"192.0.2.9", "elsewhere.example"};
    Machine machine(state);
    std::vector<ipc::IPv4Address> gateways;
    EXPECT_EQ(machine.Run([&] { sys::getGateways(1, gateways); }), Success());
    ASSERT_EQ(gateways.size(), 2U);
    EXPECT_EQ(gateways[0].ToString(), "192.0.2.1");
    EXPECT_EQ(gateways[1].ToString(), "192.0.2.9");
    gateways.clear();
    EXPECT_EQ(machine.Run([&] { sys::getGateways(2, gateways); }), AddressFailure(11001));
    EXPECT_TRUE(gateways.empty());
    EXPECT_THAT(machine.Leaks(), IsEmpty());
    EXPECT_EQ(machine.LostComBlocks(), 0U);
}

}  // namespace
