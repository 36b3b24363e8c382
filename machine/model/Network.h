// The IP settings of the simulated machine: what the methods of Win32_NetworkAdapterConfiguration
// do to it. Every method gives the code that Windows documents for the class and changes nothing
// unless it gives 0.
#pragma once

#include <cstdint>

#include "machine/State.h"

namespace machine::model {

enum NetworkCode : std::uint32_t {
    kSucceeded = 0,
    kInvalidSubnetMask = 66,
    kInvalidInput = 68,
    kTooManyGateways = 69,
    kInvalidIpAddress = 70,
    kInvalidGateway = 71,
    kInvalidDomainName = 73,
    kIpNotEnabled = 84,
};

/// Takes over what the DHCP server hands out; without a lease the adapter has no address.
void TakeLease(Adapter& adapter);

std::uint32_t EnableDhcp(Adapter& adapter);
std::uint32_t EnableStatic(Adapter& adapter, const TextList& addresses, const TextList& masks);
/// No gateways: removes them, or goes back to those of the lease.
std::uint32_t SetGateways(Adapter& adapter, const TextList& gateways);
/// No servers: goes back to those of the lease.
std::uint32_t SetDnsServers(State& state, Adapter& adapter, const TextList& servers);
std::uint32_t SetDnsSuffixes(State& state, const TextList& suffixes);

}  // namespace machine::model
