#pragma once

#include <cmath>  // Microsoft's defines the name below as a macro
#include <cstdint>

#undef DOMAIN

/// What the configuration says, as a flat stream of (kind, type, value).
namespace config::Event {

enum Type : std::uint32_t {
    BEGIN = 0,  ///< opens a scope of the kind
    END = 1,    ///< closes the innermost scope, whatever its kind
    VALUE = 2,  ///< one value for the scope on top
};

enum Kind : std::uint32_t {
    COMPUTER_NAME = 0,
    WORKGROUP = 1,
    DOMAIN = 2,
    DOMAIN_USER = 3,
    DOMAIN_PASSWORD = 4,  ///< clear text
    ORGANIZATIONAL_UNIT = 5,
    NIC = 6,  ///< scope: one adapter; the value of BEGIN is its description and is not used
    DHCP = 7,
    STATIC = 8,
    IP_INTERFACE = 9,  ///< scope: the addresses and masks of a static adapter
    IP_ADDRESS = 10,   ///< also a route's destination
    SUBNET_MASK = 11,  ///< also a route's mask
    GATEWAY = 12,
    DNS_SERVER = 13,
    DNS_SUFFIX = 14,
    STATIC_ROUTE = 15,  ///< scope: one route
    ROUTE_GATEWAY = 16,
    ROUTE_FIELD4 = 17,  ///< kept with the route and not used
    ROUTE_METRIC = 18,  ///< decimal
    IGNORED = 19,
    NIC_BUS = 21,  ///< decimal, like the device and the function
    NIC_DEVICE = 22,
    NIC_FUNCTION = 23,
};

}  // namespace config::Event
