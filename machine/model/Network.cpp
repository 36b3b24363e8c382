#include "machine/model/Network.h"

#include <algorithm>

#include "machine/model/Address.h"
#include "machine/model/Names.h"
#include "machine/model/RegistryView.h"

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

/// A gateway must be a host that one of the adapter's own networks reaches directly.
bool IsReachable(const Adapter& adapter, std::uint32_t gateway) {
    if (!adapter.ipAddress || !adapter.ipSubnet) {
        return false;
    }
    const std::size_t count = std::min(adapter.ipAddress->size(), adapter.ipSubnet->size());
    for (std::size_t i = 0; i < count; ++i) {
        const auto address = ParseAddress((*adapter.ipAddress)[i]);
        const auto mask = ParseAddress((*adapter.ipSubnet)[i]);
        if (address && mask && Network{*address, *mask}.Contains(gateway)) {
            return true;
        }
    }
    return false;
}

bool UsesLease(const Adapter& adapter) {
    return adapter.dhcpEnabled.value_or(false) && adapter.dhcpLease.has_value();
}

}  // namespace

void TakeLease(Adapter& adapter) {
    const DhcpLease lease = adapter.dhcpLease.value_or(DhcpLease());
    adapter.ipAddress = NullWhenEmpty(lease.ipAddress);
    adapter.ipSubnet = NullWhenEmpty(lease.ipSubnet);
    adapter.gateways = NullWhenEmpty(lease.gateways);
    adapter.dnsDomain = lease.dnsDomain;
    // Servers set by hand outlive the change to DHCP, as on Windows.
    adapter.dnsServers =
        NullWhenEmpty(adapter.staticDns.empty() ? lease.dnsServers : adapter.staticDns);
}

std::uint32_t EnableDhcp(Adapter& adapter) {
    if (!adapter.ipEnabled) {
        return kIpNotEnabled;
    }
    if (adapter.dhcpEnabled.value_or(false)) {
        return kSucceeded;
    }
    adapter.dhcpEnabled = true;
    TakeLease(adapter);
    return kSucceeded;
}

std::uint32_t EnableStatic(Adapter& adapter, const TextList& addresses, const TextList& masks) {
    if (!adapter.ipEnabled) {
        return kIpNotEnabled;
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
    if (adapter.dhcpEnabled.value_or(false)) {
        // What the lease brought goes with it.
        adapter.gateways.reset();
        adapter.dnsDomain.reset();
        adapter.dnsServers = NullWhenEmpty(adapter.staticDns);
    }
    adapter.dhcpEnabled = false;
    adapter.ipAddress = addresses;
    adapter.ipSubnet = masks;
    return kSucceeded;
}

std::uint32_t SetGateways(Adapter& adapter, const TextList& gateways) {
    if (!adapter.ipEnabled) {
        return kIpNotEnabled;
    }
    if (gateways.size() > kMostGateways) {
        return kTooManyGateways;
    }
    for (const std::string& text : gateways) {
        const auto gateway = ParseAddress(text);
        if (!gateway) {
            return kInvalidIpAddress;
        }
        if (!IsHost(*gateway) || !IsReachable(adapter, *gateway)) {
            return kInvalidGateway;
        }
    }
    if (gateways.empty() && UsesLease(adapter)) {
        adapter.gateways = NullWhenEmpty(adapter.dhcpLease->gateways);
    } else {
        adapter.gateways = NullWhenEmpty(gateways);
    }
    return kSucceeded;
}

std::uint32_t SetDnsServers(State& state, Adapter& adapter, const TextList& servers) {
    if (!adapter.ipEnabled) {
        return kIpNotEnabled;
    }
    if (!AreAll(servers, IsDnsServer)) {
        return kInvalidIpAddress;
    }
    adapter.staticDns = servers;
    if (servers.empty() && UsesLease(adapter)) {
        adapter.dnsServers = NullWhenEmpty(adapter.dhcpLease->dnsServers);
    } else {
        adapter.dnsServers = NullWhenEmpty(servers);
    }
    ForgetNameServer(state, adapter);
    return kSucceeded;
}

std::uint32_t SetDnsSuffixes(State& state, const TextList& suffixes) {
    if (!std::ranges::all_of(suffixes, IsSuffix)) {
        return kInvalidDomainName;
    }
    state.dnsSuffixes = suffixes;
    return kSucceeded;
}

}  // namespace machine::model
