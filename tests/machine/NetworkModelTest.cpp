#include "machine/model/Network.h"

#include <gtest/gtest.h>

#include "machine/model/Address.h"
#include "machine/model/RegistryView.h"

namespace machine::model {
namespace {

TEST(NetworkModel, EnableStaticJudgesAddressesAndMasks) {
    struct Case {
        TextList addresses;
        TextList masks;
        std::uint32_t code;
    };
    const Case cases[] = {
        {{"192.0.2.5", "10.0.0.1"}, {"255.255.255.0", "255.0.0.0"}, 0},
        {{}, {}, 68},
        {{"192.0.2.5"}, {"255.255.255.0", "255.0.0.0"}, 68},
        {{"192.0.2"}, {"255.255.255.0"}, 70},
        {{"255.255.255.255"}, {"255.255.255.0"}, 70},
        {{"192.0.2.5"}, {"255.0.255.0"}, 66},
        {{"192.0.2.5"}, {"mask"}, 66},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.addresses) + testing::PrintToString(one.masks));
        State state = DefaultState();
        Adapter& adapter = state.adapters[0];
        const Adapter before = adapter;
        EXPECT_EQ(EnableStatic(adapter, one.addresses, one.masks), one.code);
        if (one.code != 0) {
            EXPECT_EQ(adapter, before);
            continue;
        }
        EXPECT_EQ(adapter.ipAddress, one.addresses);
        EXPECT_EQ(adapter.dhcpEnabled, false);
        EXPECT_EQ(adapter.gateways, std::nullopt) << "the lease's gateway goes with the lease";
        EXPECT_EQ(adapter.dnsServers, std::nullopt);
    }
}

TEST(NetworkModel, SetGatewaysWantsHostsOnTheAdaptersNetwork) {
    const std::pair<TextList, std::uint32_t> cases[] = {
        {{"198.51.100.254", "198.51.100.1"}, 0}, {{}, 0}, {{"gateway"}, 70}, {{"10.0.0.1"}, 71},
        {TextList(6, "198.51.100.1"), 69},
    };
    for (const auto& [gateways, code] : cases) {
        State state = DefaultState();
        const TextList before = *state.adapters[1].gateways;
        EXPECT_EQ(SetGateways(state.adapters[1], gateways), code);
        EXPECT_EQ(state.adapters[1].gateways.value_or(TextList()), code == 0 ? gateways : before);
    }
}

TEST(NetworkModel, AnAdapterWithoutIpRefusesEverything) {
    State state = DefaultState();
    Adapter& adapter = state.adapters[1];
    adapter.ipEnabled = false;
    EXPECT_EQ(EnableDhcp(adapter), 84U);
    EXPECT_EQ(EnableStatic(adapter, {"192.0.2.5"}, {"255.255.255.0"}), 84U);
    EXPECT_EQ(SetGateways(adapter, {}), 84U);
    EXPECT_EQ(SetDnsServers(state, adapter, {}), 84U);
}

TEST(NetworkModel, DhcpTakesTheLeaseButKeepsServersSetByHand) {
    State state = DefaultState();
    Adapter& adapter = state.adapters[1];
    EXPECT_EQ(EnableDhcp(adapter), 0U);
    EXPECT_EQ(adapter.ipAddress, (TextList{"198.51.100.77"}));
    EXPECT_EQ(adapter.dnsServers, (TextList{"198.51.100.10"}));
    EXPECT_EQ(adapter.staticDns, (TextList{"198.51.100.10"}));

    adapter.dhcpLease->dnsServers = {"198.51.100.11"};
    EXPECT_EQ(SetDnsServers(state, adapter, {}), 0U);
    EXPECT_EQ(adapter.dnsServers, (TextList{"198.51.100.11"}));
    EXPECT_EQ(adapter.staticDns, TextList());

    Adapter lonely = adapter;
    lonely.dhcpEnabled = false;
    lonely.dhcpLease.reset();
    EXPECT_EQ(EnableDhcp(lonely), 0U);
    EXPECT_EQ(lonely.ipAddress, std::nullopt);
}

TEST(NetworkModel, AddressesReadStrictly) {
    for (const char* text : {"1.2.3", "1.2.3.4.5", "1.2.3.-4", " 1.2.3.4", "1.2.3.256"}) {
        EXPECT_EQ(ParseAddress(text), std::nullopt) << text;
    }
}

TEST(RegistryView, KeysFollowFromTheAdaptersUnlessListed) {
    State state = DefaultState();
    const std::string interfaceKey =
        R"(SYSTEM\CurrentControlSet\Services\Tcpip\Parameters\Interfaces\)" +
        *state.adapters[1].settingId;
    const auto nameServer = [&] { return FindValue(state, interfaceKey, "nameserver")->data; };
    EXPECT_EQ(nameServer(), std::string("198.51.100.10\0", 14));
    state.registry.push_back({interfaceKey, {RegistryValue::Text("NameServer", "listed")}});
    EXPECT_EQ(nameServer(), std::string("listed\0", 7));
    EXPECT_EQ(FindValue(state, interfaceKey, "EnableDHCP")->data, std::string(4, '\0'));

    EXPECT_EQ(SetDnsServers(state, state.adapters[1], {"192.0.2.1", "192.0.2.2"}), 0U);
    EXPECT_EQ(nameServer(), std::string("192.0.2.1,192.0.2.2\0", 20))
        << "the method writes where the listed value stood";

    EXPECT_TRUE(KeyExists(state, R"(system\CURRENTCONTROLSET\Enum)"));
    EXPECT_FALSE(KeyExists(state, R"(SYSTEM\CurrentControlSet\Enu)"));
    CreateKey(state, interfaceKey + "\\Below");
    EXPECT_TRUE(KeyExists(state, interfaceKey + "\\Below"));
}

}  // namespace
}  // namespace machine::model
