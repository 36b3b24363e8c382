#include "machine/model/Address.h"

#include <charconv>

namespace machine::model {

std::optional<std::uint32_t> ParseAddress(std::string_view text) {
    constexpr int kOctets = 4;
    const char* const last = text.data() + text.size();
    const char* next = text.data();
    std::uint32_t address = 0;
    for (int i = 0; i < kOctets; ++i) {
        if (i > 0 && (next == last || *next++ != '.')) {
            return std::nullopt;
        }
        std::uint8_t octet = 0;
        const auto [end, error] = std::from_chars(next, last, octet);
        if (error != std::errc()) {
            return std::nullopt;
        }
        address = address << 8 | octet;
        next = end;
    }
    return next == last ? std::optional(address) : std::nullopt;
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

bool IsMask(std::uint32_t mask) {
    const std::uint32_t hostBits = ~mask;
    return (hostBits & (hostBits + 1)) == 0;
}

bool IsAdapterMask(std::uint32_t mask) {
    return mask != 0 && IsMask(mask);
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
