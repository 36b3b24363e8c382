#include "machine/model/Routes.h"

#include <algorithm>
#include <iterator>

#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"

namespace machine::model {
namespace {

// Documented of the class: -1 stands where a metric is not used. A gateway that was set without one
// leaves it.
constexpr std::int32_t kNoMetric = -1;

PersistedRoute RouteOf(const std::string& gateway) {
    return {"0.0.0.0", "0.0.0.0", gateway, kNoMetric};
}

bool IsIPv4(const std::string& text) {
    return ParseAddress(text).has_value();
}

bool Holds(const TextList& list, const std::string& address) {
    return std::ranges::any_of(
        list, [&address](const std::string& other) { return IsSameAddress(other, address); });
}

}  // namespace

bool IsSameAddress(const std::string& left, const std::string& right) {
    const auto address = ParseAddress(left);
    return address ? address == ParseAddress(right) : left == right;
}

bool IsDefaultRoute(const PersistedRoute& route) {
    return IsSameAddress(route.destination, "0.0.0.0") && IsSameAddress(route.mask, "0.0.0.0");
}

bool IsSetByHand(const State& state, const std::string& gateway) {
    return std::ranges::any_of(state.routes, [&gateway](const PersistedRoute& route) {
        return IsDefaultRoute(route) && IsSameAddress(route.nextHop, gateway);
    });
}

bool Reaches(const Adapter& adapter, std::uint32_t address) {
    const TextList addresses = adapter.ipAddress.value_or(TextList());
    const TextList masks = adapter.ipSubnet.value_or(TextList());
    for (std::size_t i = 0; i < std::min(addresses.size(), masks.size()); ++i) {
        const auto own = ParseAddress(addresses[i]);
        const auto mask = ParseAddress(masks[i]);
        if (own && mask && Network{*own, *mask}.Contains(address)) {
            return true;
        }
    }
    return false;
}

void PersistGateways(State& state) {
    // Documented (class text, KB 2966111), on a forum said to be so since Vista: a gateway set by
    // hand is also a persistent route 0.0.0.0. Platform knowledge: one for all adapters that have
    // it, since the registry keeps a route by its text.
    TextList missing;
    for (const Adapter& adapter : state.adapters) {
        for (const std::string& gateway : adapter.gateways.value_or(TextList())) {
            if (adapter.dhcpEnabled == false && IsIPv4(gateway) && !IsSetByHand(state, gateway) &&
                !Holds(missing, gateway)) {
                missing.push_back(gateway);
            }
        }
    }
    std::ranges::transform(missing, std::inserter(state.routes, state.routes.begin()), RouteOf);
}

void ReplaceGatewayRoutes(State& state, const Adapter& adapter, const TextList& gateways) {
    const TextList former = adapter.gateways.value_or(TextList());
    const auto isOfAnother = [&](const std::string& gateway) {
        return std::ranges::any_of(state.adapters, [&](const Adapter& other) {
            return other.index != adapter.index && other.dhcpEnabled == false &&
                   Holds(other.gateways.value_or(TextList()), gateway);
        });
    };
    std::erase_if(state.routes, [&](const PersistedRoute& route) {
        return IsDefaultRoute(route) && Holds(former, route.nextHop) &&
               !Holds(gateways, route.nextHop) && !isOfAnother(route.nextHop);
    });
    for (const std::string& gateway : gateways) {
        if (!IsSetByHand(state, gateway)) {
            state.routes.push_back(RouteOf(gateway));
        }
    }
}

bool HasRoute(const State& state, std::uint32_t destination, std::uint32_t mask,
              std::uint32_t gateway) {
    const auto isGateway = [gateway](const std::string& text) {
        return ParseAddress(text) == gateway;
    };
    const auto has = [&isGateway](const Adapter& adapter) {
        return HasIp(adapter) && adapter.gateways &&
               std::ranges::any_of(*adapter.gateways, isGateway);
    };
    return std::ranges::any_of(state.routes,
                               [&](const PersistedRoute& route) {
                                   return ParseAddress(route.destination) == destination &&
                                          ParseAddress(route.mask) == mask &&
                                          isGateway(route.nextHop);
                               }) ||
           (destination == 0 && mask == 0 && std::ranges::any_of(state.adapters, has));
}

void AddRoute(State& state, const PersistedRoute& route) {
    state.routes.push_back(route);
    if (!IsDefaultRoute(route)) {
        return;
    }
    // Platform knowledge: DefaultIPGateway shows the default routes in use, whoever made them.
    for (Adapter& adapter : state.adapters) {
        const auto hop = ParseAddress(route.nextHop);
        if (HasIp(adapter) && hop && Reaches(adapter, *hop)) {
            TextList gateways = adapter.gateways.value_or(TextList());
            gateways.insert(std::ranges::find_if_not(gateways, IsIPv4), route.nextHop);
            adapter.gateways = gateways;
            return;
        }
    }
}

bool DeleteRoutes(State& state, const std::string& destination) {
    // Documented in the program's help: routes in use and persistent ones, with or without -p.
    // Platform knowledge: whatever the mask and the gateway.
    const auto address = ParseAddress(destination);
    std::size_t gone = std::erase_if(state.routes, [&](const PersistedRoute& route) {
        return address ? ParseAddress(route.destination) == address
                       : route.destination == destination;
    });
    if (address == 0U) {
        // Reported on a forum: the default routes of all adapters go.
        for (Adapter& adapter : state.adapters) {
            TextList gateways = adapter.gateways.value_or(TextList());
            gone += std::erase_if(gateways, IsIPv4);
            adapter.gateways = gateways.empty() ? std::nullopt : std::optional(gateways);
        }
    }
    return gone != 0;
}

std::uint32_t RefusedRouteExitCode(const State& state) {
    // Seen in three projects, once proved on Windows 11: route exits with 0 for an addition or a
    // deletion that failed, and only its text, which is translated, tells. Others saw 1.
    return state.system.versions.refusedRoute;
}

}  // namespace machine::model
