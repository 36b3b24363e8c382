// Connections to WMI on the simulated machine, and answers out of the ordinary.
#include <windows.h>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/sys/WmiQueries.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;

TEST(WmiConnection, ItsErrorCarriesTheThreadsLastWindowsError) {
    Machine machine;
    machine.Fail("ConnectServer");
    std::string name = "kept";
    DWORD lastError = 0;
    SetLastError(1234);
    try {
        sys::getComputerName(name);
    } catch (const sys::CWmiError& error) {
        lastError = error.LastError();
    }
    EXPECT_EQ(lastError, 1234U);
    EXPECT_EQ(name, "kept");
}

TEST(WmiAnswers, PropertiesWithoutAValueAndAdaptersThatAreNotThere) {
    machine::State state = machine::DefaultState();
    machine::Adapter bare;
    bare.index = 1;
    bare.connectionName = "bare";
    state.adapters = {bare};
    Machine machine(state);
    bool enabled = true;
    bool untouched = true;
    std::string text = "kept";
    std::string other = "kept";
    ipc::IPv4Address address(std::string("1.2.3.4"));
    std::vector<ipc::IPv4Address> addresses;
    std::vector<std::string> texts;
    EXPECT_EQ(machine.Run([&] {
        sys::getDhcpEnabled(0xFFFFFFFF, untouched);
        sys::getCaption(3, text);
        sys::getDhcpEnabled(1, enabled);
        sys::getGateways(1, addresses);
        sys::getDnsServersAndSuffixes(1, addresses, texts);
    }),
              Success());
    EXPECT_TRUE(untouched);
    EXPECT_FALSE(enabled) << "null is not true";
    EXPECT_TRUE(addresses.empty() && texts.empty());
    EXPECT_EQ(machine.Run([&] { sys::getIpAddressAndMask(1, address, address); }),
              RefusedArgument("Invalid argument passed to attach()"));
    EXPECT_EQ(text + other, "keptkept");
    EXPECT_EQ(address.ToString(), "1.2.3.4");
    const std::function<void()> nullTexts[] = {
        [&] { sys::getMacAddress(1, text); }, [&] { sys::getSettingId(1, text); },
        [&] { sys::getPnpDeviceId(1, text); },
        [&] { sys::getDnsDomainAndHostName(1, text, other); },
        [&] { sys::getAdapterTypeAndManufacturer(1, text, other); }};
    for (const auto& query : nullTexts) {
        text = "kept";
        EXPECT_EQ(machine.Run(query), Success());
        EXPECT_EQ(text, "");
    }
    EXPECT_EQ(other, "");
}

}  // namespace
