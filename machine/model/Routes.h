// Default gateways and the table of persistent routes, which are two views of one thing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "machine/State.h"

namespace machine::model {

/// Whether both texts are the same address.
bool IsSameAddress(const std::string& left, const std::string& right);

bool IsDefaultRoute(const PersistedRoute& route);

/// Whether the gateway was set by hand: a lease's is no persistent route.
bool IsSetByHand(const State& state, const std::string& gateway);

/// Whether the address is in one of the adapter's networks.
bool Reaches(const Adapter& adapter, std::uint32_t address);

/// Gives the gateways of adapters without DHCP their persistent routes, where they have none yet.
void PersistGateways(State& state);

/// The adapter gets these gateways, set by hand, for those that it has.
void ReplaceGatewayRoutes(State& state, const Adapter& adapter, const TextList& gateways);

/// Whether there is such a route, persistent or one that a lease made.
bool HasRoute(const State& state, std::uint32_t destination, std::uint32_t mask,
              std::uint32_t gateway);

/// Adds a persistent route.
void AddRoute(State& state, const PersistedRoute& route);

/// Deletes every route to the destination, whatever its mask and gateway; false where there is
/// none.
bool DeleteRoutes(State& state, const std::string& destination);

/// Seen in four logs: what the route program exits with, and changes nothing, without elevation.
inline constexpr int kNotElevatedExitCode = 1;

/// What it exits with for an addition or a deletion that fails.
std::uint32_t RefusedRouteExitCode(const State& state);

}  // namespace machine::model
