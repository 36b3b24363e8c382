// The IP settings of the simulated machine: what the methods of Win32_NetworkAdapterConfiguration
// do to it. Every method gives a code that Windows is documented or known to give, and changes
// nothing unless it gives 0 or, for EnableStatic alone, 81.
#pragma once

#include <cstdint>

#include "machine/State.h"

namespace machine::model {

enum NetworkCode : std::uint32_t {
    kSucceeded = 0,
    kNotSupported = 64,
    kInvalidSubnetMask = 66,
    kInvalidInput = 68,
    kTooManyGateways = 69,
    kInvalidIpAddress = 70,
    kInvalidGateway = 71,
    kInvalidDomainName = 73,
    kDhcpNotConfigured = 81,
    kIpNotEnabled = 84,
    kAccessIsDenied = 91,
    kWbemAccessDenied = 0x80041003,     // WBEM_E_ACCESS_DENIED
    kConfigurationLocked = 0x8004A024,  // NETCFG_E_NO_WRITE_LOCK
};

/// Takes over what the DHCP server hands out; without a server the adapter gives itself an address.
void TakeLease(State& state, Adapter& adapter);

/// Lets time pass: leases that are asked for arrive.
void PassTime(State& state, std::uint64_t milliseconds);
/// Lets enough time pass for everything that was begun to finish.
void Settle(State& state);

std::uint32_t EnableDhcp(State& state, Adapter& adapter);
std::uint32_t EnableStatic(State& state, Adapter& adapter, const TextList& addresses,
                           const TextList& masks);
/// No gateways: removes them.
std::uint32_t SetGateways(State& state, Adapter& adapter, const TextList& gateways);
/// No servers: goes back to those of the lease.
std::uint32_t SetDnsServers(State& state, Adapter& adapter, const TextList& servers);
/// No list: removes the machine's own. An empty one is refused.
std::uint32_t SetDnsSuffixes(State& state, const std::optional<TextList>& suffixes);

}  // namespace machine::model
