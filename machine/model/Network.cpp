#include "machine/model/Network.h"

#include <algorithm>

#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/Names.h"
#include "machine/model/RegistryView.h"
#include "machine/model/Routes.h"

namespace machine::model {
namespace {

std::optional<TextList> NullWhenEmpty(const TextList& list) {
    return list.empty() ? std::nullopt : std::optional(list);
}

/// Whether every text is an address of that kind.
bool AreAll(const TextList& texts, bool (*isKind)(std::uint32_t)) {
    return std::ranges::all_of(texts, [isKind](const std::string& text) {
        const auto address = ParseAddress(text);
        return address && isKind(*address);
    });
}

bool HasLease(const Adapter& adapter) {
    return adapter.dhcpEnabled.value_or(false) && adapter.dhcpLease && !adapter.leaseDueIn;
}

/// Puts addresses of IPv4 in the place of those there are. Those of IPv6 stay after them, each
/// with the length of its prefix for a mask (seen in five public dumps): no method here touches
/// them.
void ReplaceAddresses(Adapter& adapter, TextList addresses, TextList masks) {
    const TextList present = adapter.ipAddress.value_or(TextList());
    const TextList prefixes = adapter.ipSubnet.value_or(TextList());
    for (std::size_t i = 0; i < std::min(present.size(), prefixes.size()); ++i) {
        if (IsIPv6(present[i])) {
            addresses.push_back(present[i]);
            masks.push_back(prefixes[i]);
        }
    }
    adapter.ipAddress = NullWhenEmpty(addresses);
    adapter.ipSubnet = NullWhenEmpty(masks);
}

/// The same for gateways: those of IPv6 come with router advertisements (seen in two public dumps).
void ReplaceGateways(Adapter& adapter, TextList gateways) {
    for (const std::string& gateway : adapter.gateways.value_or(TextList())) {
        if (IsIPv6(gateway)) {
            gateways.push_back(gateway);
        }
    }
    adapter.gateways = NullWhenEmpty(gateways);
}

TextList GatewaysSetByHand(const State& state, const Adapter& adapter) {
    TextList gateways = adapter.gateways.value_or(TextList());
    std::erase_if(gateways,
                  [&state](const std::string& gateway) { return !IsSetByHand(state, gateway); });
    return gateways;
}

/// Documented: an adapter that gets its own address for a gateway has none afterwards.
bool ClearsGateways(const Adapter& adapter, const TextList& gateways) {
    const TextList own = adapter.ipAddress.value_or(TextList());
    return !gateways.empty() && std::ranges::all_of(gateways, [&own](const std::string& gateway) {
        return std::ranges::any_of(own, [&gateway](const std::string& address) {
            return IsSameAddress(gateway, address);
        });
    });
}

/// What any of the methods may answer without having looked at its parameters.
std::uint32_t Refusal(State& state) {
    if (!state.system.elevated) {
        // Seen twice: 0x80041003 without elevation. Documented: 91, access denied.
        return state.system.versions.notElevated;
    }
    if (state.system.lockedCalls > 0) {
        // Documented: somebody else is changing the configuration. It passes; one project tries ten
        // times, a second apart.
        --state.system.lockedCalls;
        return kConfigurationLocked;
    }
    return kSucceeded;
}

std::uint32_t Refusal(State& state, const Adapter& adapter) {
    const std::uint32_t refusal = Refusal(state);
    // Seen in two projects: 84 where IPEnabled is false.
    return refusal == kSucceeded && !HasIp(adapter) ? static_cast<std::uint32_t>(kIpNotEnabled)
                                                    : refusal;
}

}  // namespace

void TakeLease(State& state, Adapter& adapter) {
    // Platform knowledge: where no server answers, an adapter gives itself an address of 169.254.
    const std::string own = "169.254." + std::to_string(1 + adapter.index % 254) + ".1";
    const DhcpLease lease =
        adapter.dhcpLease.value_or(DhcpLease{{own}, {"255.255.0.0"}, {}, {}, std::nullopt});
    adapter.leaseDueIn.reset();
    ReplaceAddresses(adapter, lease.ipAddress, lease.ipSubnet);
    TextList gateways = GatewaysSetByHand(state, adapter);
    for (const std::string& gateway : lease.gateways) {
        if (std::ranges::find(gateways, gateway) == gateways.end()) {
            gateways.push_back(gateway);
        }
    }
    ReplaceGateways(adapter, gateways);
    adapter.dnsDomain = lease.dnsDomain;
    // Documented by implication: servers set by hand outlive the change to DHCP.
    adapter.dnsServers =
        NullWhenEmpty(adapter.staticDns.empty() ? lease.dnsServers : adapter.staticDns);
}

void PassTime(State& state, std::uint64_t milliseconds) {
    for (Adapter& adapter : state.adapters) {
        if (adapter.leaseDueIn && *adapter.leaseDueIn <= milliseconds) {
            TakeLease(state, adapter);
        } else if (adapter.leaseDueIn) {
            *adapter.leaseDueIn -= static_cast<std::uint32_t>(milliseconds);
        }
    }
}

void Settle(State& state) {
    PassTime(state, UINT64_MAX);
}

std::uint32_t EnableDhcp(State& state, Adapter& adapter) {
    if (const std::uint32_t refusal = Refusal(state, adapter); refusal != kSucceeded) {
        return refusal;
    }
    if (adapter.dhcpEnabled.value_or(false)) {
        return kSucceeded;
    }
    adapter.dhcpEnabled = true;
    // Documented in the method's remarks, and seen as two default gateways side by side: gateways
    // set by hand stay.
    ReplaceAddresses(adapter, {}, {});
    // Documented (KB 241410): the method does not wait for the lease, whose address takes about 3 s
    // and its gateway 2 s more.
    adapter.leaseDueIn = state.system.versions.leaseTakes;
    PassTime(state, 0);
    return kSucceeded;
}

std::uint32_t EnableStatic(State& state, Adapter& adapter, const TextList& addresses,
                           const TextList& masks) {
    if (const std::uint32_t refusal = Refusal(state, adapter); refusal != kSucceeded) {
        return refusal;
    }
    if (addresses.empty() || addresses.size() != masks.size()) {
        return kInvalidInput;
    }
    if (!AreAll(addresses, IsHost)) {
        return kInvalidIpAddress;
    }
    if (!AreAll(masks, IsAdapterMask)) {
        return kInvalidSubnetMask;
    }
    const bool wasStatic = adapter.dhcpEnabled == false;
    if (adapter.dhcpEnabled.value_or(false)) {
        // Platform knowledge: what the lease brought goes with it; between two static addresses
        // gateways and servers stay.
        ReplaceGateways(adapter, GatewaysSetByHand(state, adapter));
        adapter.dnsDomain.reset();
        adapter.dnsServers = NullWhenEmpty(adapter.staticDns);
        adapter.leaseDueIn.reset();
    }
    adapter.dhcpEnabled = false;
    ReplaceAddresses(adapter, addresses, masks);
    // Documented in the method's remarks, seen once: 81 on an adapter that is static already, yet
    // the address is set.
    return wasStatic ? state.system.versions.staticOnStatic
                     : static_cast<std::uint32_t>(kSucceeded);
}

std::uint32_t SetGateways(State& state, Adapter& adapter, const TextList& gateways) {
    if (const std::uint32_t refusal = Refusal(state, adapter); refusal != kSucceeded) {
        return refusal;
    }
    if (adapter.dhcpEnabled.value_or(false)) {
        return kNotSupported;  // documented: in static mode only
    }
    if (gateways.size() > kMostGateways) {
        return kTooManyGateways;
    }
    if (ClearsGateways(adapter, gateways)) {
        ReplaceGateways(adapter, {});  // seen once: a persistent route of before stays
        return kSucceeded;
    }
    for (const std::string& text : gateways) {
        const auto gateway = ParseAddress(text);
        if (!gateway) {
            return kInvalidIpAddress;
        }
        if (!IsHost(*gateway) || !Reaches(adapter, *gateway)) {
            return kInvalidGateway;
        }
    }
    ReplaceGatewayRoutes(state, adapter, gateways);
    ReplaceGateways(adapter, gateways);
    return kSucceeded;
}

std::uint32_t SetDnsServers(State& state, Adapter& adapter, const TextList& servers) {
    if (const std::uint32_t refusal = Refusal(state, adapter); refusal != kSucceeded) {
        return refusal;
    }
    if (!AreAll(servers, IsDnsServer)) {
        return kInvalidIpAddress;
    }
    adapter.staticDns = servers;
    // Documented: without servers the adapter goes back to those of DHCP.
    if (servers.empty() && HasLease(adapter)) {
        adapter.dnsServers = NullWhenEmpty(adapter.dhcpLease->dnsServers);
    } else {
        adapter.dnsServers = NullWhenEmpty(servers);
    }
    ForgetNameServer(state, adapter);
    return kSucceeded;
}

std::uint32_t SetDnsSuffixes(State& state, const std::optional<TextList>& suffixes) {
    if (const std::uint32_t refusal = Refusal(state); refusal != kSucceeded) {
        return refusal;
    }
    if (suffixes && suffixes->empty()) {
        // Seen once: an empty array fails, and NULL is right. With which code is not known.
        return kInvalidInput;
    }
    const TextList list = suffixes.value_or(TextList());
    if (!std::ranges::all_of(list, IsSuffix)) {
        return kInvalidDomainName;
    }
    state.dnsSuffixes = list;
    return kSucceeded;
}

}  // namespace machine::model
