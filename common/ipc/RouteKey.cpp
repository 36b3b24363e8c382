#include "common/ipc/RouteKey.h"

namespace ipc {

bool operator<(const RouteKey& left, const RouteKey& right) noexcept {
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
