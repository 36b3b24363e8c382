#include "machine/model/Network.h"

#include <gtest/gtest.h>

#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/RegistryView.h"
#include "machine/model/Routes.h"

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
        {{"192.0.2.5"}, {"255.255.255.255"}, 66},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.addresses) + testing::PrintToString(one.masks));
        State state = DefaultState();
        Adapter& adapter = state.adapters[0];
        const Adapter before = adapter;
        EXPECT_EQ(EnableStatic(state, adapter, one.addresses, one.masks), one.code);
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
        EXPECT_EQ(SetGateways(state, state.adapters[1], gateways), code);
        EXPECT_EQ(state.adapters[1].gateways.value_or(TextList()), code == 0 ? gateways : before);
    }
    State shared = DefaultState();
    shared.adapters[0].dhcpEnabled = false;
    shared.adapters[0].gateways = shared.adapters[1].gateways;
    EXPECT_EQ(SetGateways(shared, shared.adapters[1], {"198.51.100.254"}), 0U);
    EXPECT_TRUE(IsSetByHand(shared, "198.51.100.1")) << "another adapter has it still";
}

TEST(NetworkModel, TheStateOfTheMachineRefusesBeforeTheParametersDo) {
    State state = DefaultState();
    Adapter& adapter = state.adapters[1];
    const auto expectOfAll = [&](std::uint32_t code) {
        EXPECT_EQ(EnableDhcp(state, adapter), code);
        EXPECT_EQ(EnableStatic(state, adapter, {"192.0.2.5"}, {"255.255.255.0"}), code);
        EXPECT_EQ(SetGateways(state, adapter, {}), code);
        EXPECT_EQ(SetDnsServers(state, adapter, {}), code);
    };
    adapter.condition = Condition::kUnplugged;
    expectOfAll(84);
    state.system.lockedCalls = 4;
    expectOfAll(2147786788);
    EXPECT_EQ(SetDnsSuffixes(state, {}), 0U) << "the lock has passed";
    EXPECT_EQ(SetDnsSuffixes(state, TextList()), 68U) << "an empty list is none";
    state.system.elevated = false;
    expectOfAll(2147749891);
    state.system.versions.notElevated = 91;
    expectOfAll(91);
    EXPECT_EQ(SetGateways(state, state.adapters[0], {}), 91U);
    state.system.elevated = true;
    EXPECT_EQ(SetGateways(state, state.adapters[0], {}), 64U) << "in static mode only";
}

TEST(NetworkModel, DhcpTakesTheLeaseButKeepsWhatWasSetByHand) {
    State state = DefaultState();
    Adapter& adapter = state.adapters[1];
    adapter.dhcpLease->gateways = {"198.51.100.2"};
    adapter.ipAddress->push_back("fe80::2");
    adapter.ipSubnet->push_back("64");
    adapter.gateways->push_back("fe80::1");
    EXPECT_EQ(EnableDhcp(state, adapter), 0U);
    EXPECT_EQ(adapter.ipAddress, (TextList{"fe80::2"})) << "the lease is still to come";
    PassTime(state, 4999);
    EXPECT_EQ(adapter.leaseDueIn, 1U);
    PassTime(state, 1);
    EXPECT_EQ(adapter.ipAddress, (TextList{"198.51.100.77", "fe80::2"}));
    EXPECT_EQ(adapter.gateways, (TextList{"198.51.100.1", "198.51.100.2", "fe80::1"}));
    EXPECT_EQ(adapter.dnsServers, (TextList{"198.51.100.10"}));
    EXPECT_EQ(adapter.staticDns, (TextList{"198.51.100.10"}));
    const State leased = state;
    ApplyRestart(state);
    EXPECT_EQ(state, leased);

    adapter.dhcpLease->dnsServers = {"198.51.100.11"};
    EXPECT_EQ(SetDnsServers(state, adapter, {}), 0U);
    EXPECT_EQ(adapter.dnsServers, (TextList{"198.51.100.11"}));
    EXPECT_EQ(adapter.staticDns, TextList());

    adapter.dhcpEnabled = false;
    adapter.dhcpLease.reset();
    EXPECT_EQ(EnableDhcp(state, adapter), 0U);
    Settle(state);
    EXPECT_EQ(adapter.ipAddress, (TextList{"169.254.3.1", "fe80::2"}));
}

TEST(NetworkModel, AGatewaySetByHandIsADefaultRoute) {
    State state = DefaultState();
    Adapter& adapter = state.adapters[1];
    const auto hops = [&state] {
        TextList list;
        for (const PersistedRoute& route : state.routes) {
            if (IsDefaultRoute(route)) {
                list.push_back(route.nextHop);
            }
        }
        return list;
    };
    EXPECT_EQ(hops(), (TextList{"198.51.100.1"})) << "a lease's gateway is none";
    EXPECT_TRUE(HasRoute(state, 0, 0, *ParseAddress("192.0.2.1"))) << "and yet a route";
    EXPECT_EQ(SetGateways(state, adapter, {"198.51.100.3", "198.51.100.1"}), 0U);
    EXPECT_EQ(hops(), (TextList{"198.51.100.1", "198.51.100.3"}));
    EXPECT_EQ(SetGateways(state, adapter, *adapter.ipAddress), 0U);
    EXPECT_EQ(adapter.gateways, std::nullopt);
    EXPECT_EQ(hops(), (TextList{"198.51.100.1", "198.51.100.3"})) << "the routes stay";
    EXPECT_TRUE(DeleteRoutes(state, "0.0.0.0"));
    EXPECT_FALSE(DeleteRoutes(state, "0.0.0.0"));
    EXPECT_EQ(hops(), TextList());
    EXPECT_EQ(state.adapters[0].gateways, std::nullopt) << "those of all adapters";
    EXPECT_EQ(state.routes.size(), 1U);
    AddRoute(state, {"0.0.0.0", "0.0.0.0", "198.51.100.9", 5});
    EXPECT_EQ(adapter.gateways, (TextList{"198.51.100.9"}));
}

TEST(AdapterView, ShowsTheSuffixesThatCount) {
    State state = DefaultState();
    EXPECT_EQ(ShownSuffixes(state), (TextList{"lab.example"})) << "of the connection";
    state.membership = Membership::OfDomain("CORP", "corp.example");
    EXPECT_EQ(ShownSuffixes(state), (TextList{"corp.example", "lab.example"}));
    state.dnsSuffixes = {"own.example"};
    EXPECT_EQ(ShownSuffixes(state), (TextList{"own.example"}));
    state.registry = {{R"(Software\Policies\Microsoft\Windows NT\DNSClient)",
                       {RegistryValue::Text("SearchList", "a.example, b.example")}}};
    EXPECT_EQ(ShownSuffixes(state), (TextList{"a.example", "b.example"}));
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
