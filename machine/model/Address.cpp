#include "machine/model/Address.h"

#include <utility>

namespace machine::model {

std::optional<std::uint32_t> ParseAddress(std::string_view text) {
    constexpr std::uint32_t kMostOctet = 255;
    std::uint32_t address = 0;
    std::uint32_t octet = 0;
    int octets = 0;
    bool hasDigit = false;
    const auto finishOctet = [&] {
        address = address << 8 | octet;
        ++octets;
        return std::exchange(hasDigit, false) && std::exchange(octet, 0) <= kMostOctet;
    };
    for (const char character : text) {
        if (character >= '0' && character <= '9' && octet <= kMostOctet) {
            octet = octet * 10 + static_cast<std::uint32_t>(character - '0');
            hasDigit = true;
        } else if (character != '.' || !finishOctet()) {
            return std::nullopt;
        }
    }
    return finishOctet() && octets == 4 ? std::optional(address) : std::nullopt;
}

std::string FormatAddress(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string((address >> shift) & 0xFF);
        if (shift != 0) {
            text += '.';
        }
    }
    return text;
}

bool IsIPv6(std::string_view text) {
    return text.find(':') != std::string_view::npos;
}

bool IsMask(std::uint32_t mask) {
    const std::uint32_t hostBits = ~mask;
    return (hostBits & (hostBits + 1)) == 0;
}

bool IsAdapterMask(std::uint32_t mask) {
    // A mask of 255.255.255.255 is refused with 66 (seen once).
    return mask != 0 && mask != 0xFFFFFFFFU && IsMask(mask);
}

bool IsHost(std::uint32_t address) {
    const std::uint32_t first = address >> 24;
    return first != 0 && first != 127 && first < 224;
}

bool IsDnsServer(std::uint32_t address) {
    return IsHost(address) || address >> 24 == 127;
}

bool HasBitsOutside(std::uint32_t destination, std::uint32_t mask) {
    return (destination & ~mask) != 0;
}

}  // namespace machine::model
