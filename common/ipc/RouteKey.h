#pragma once

#include <cstdint>

#include "common/ipc/IpAddress.h"

namespace ipc {

/// One IPv4 route, ordered by destination, netmask, gateway and metric (signed).
struct RouteKey {
    IPv4Address destination;
    IPv4Address netmask;
    IPv4Address gateway;
    std::int32_t metric = 0;
};

inline bool operator<(const RouteKey& left, const RouteKey& right) noexcept {
    if (left.destination != right.destination) {
        return left.destination < right.destination;
    }
    if (left.netmask != right.netmask) {
        return left.netmask < right.netmask;
    }
    if (left.gateway != right.gateway) {
        return left.gateway < right.gateway;
    }
    return left.metric < right.metric;
}

}  // namespace ipc
