// IPv4 addresses as text and as numbers, in host byte order, and what Windows takes them for: the
// one set of rules, for the machine that refuses an address and for whoever says beforehand that it
// will.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace machine::model {

/// Nothing unless the text is four decimal numbers.
std::optional<std::uint32_t> ParseAddress(std::string_view text);
std::string FormatAddress(std::uint32_t address);

/// Whether the text, an address, is one of IPv6.
bool IsIPv6(std::string_view text);

/// Ones, then zeros; either may be missing, as in the mask of a route.
bool IsMask(std::uint32_t mask);
// The same for an adapter's address, which needs a network with room for others.
bool IsAdapterMask(std::uint32_t mask);
/// What an adapter or a gateway may have.
bool IsHost(std::uint32_t address);
/// A machine may ask itself: domain controllers do.
bool IsDnsServer(std::uint32_t address);

/// A network that an adapter has an address in.
struct Network {
    std::uint32_t address = 0;
    std::uint32_t mask = 0;

    bool Contains(std::uint32_t other) const { return (address & mask) == (other & mask); }
};

/// Documented of SetGateways.
inline constexpr std::size_t kMostGateways = 5;

/// The metrics that the route program is documented to take.
inline constexpr std::int32_t kLeastMetric = 1;
inline constexpr std::int32_t kMostMetric = 9999;
/// Whether a route's destination has bits outside its mask.
bool HasBitsOutside(std::uint32_t destination, std::uint32_t mask);

}  // namespace machine::model
