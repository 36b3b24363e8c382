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

bool operator<(const RouteKey& left, const RouteKey& right) noexcept;

}  // namespace ipc
