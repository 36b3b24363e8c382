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

}  // namespace machine::model
