#include "machine/model/Address.h"

#include <charconv>

#include "machine/Text.h"

namespace machine::model {

std::optional<std::uint32_t> ParseAddress(std::string_view text) {
    const auto parts = Split(text, '.');
    if (parts.size() != 4) {
        return std::nullopt;
    }
    std::uint32_t address = 0;
    for (const std::string& part : parts) {
        std::uint8_t octet = 0;
        const char* last = part.data() + part.size();
        const auto [end, error] = std::from_chars(part.data(), last, octet);
        if (error != std::errc() || end != last) {
            return std::nullopt;
        }
        address = address << 8 | octet;
    }
    return address;
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
