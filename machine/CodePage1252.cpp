// Where there is no Windows to ask, its code page is that of Western Europe.
#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "machine/CodePage.h"

namespace machine {
namespace {

/// The characters of the bytes 0x80 to 0x9F; the others are their own numbers. Five bytes have no
/// character, and Windows takes them for control characters.
constexpr std::array<char16_t, 32> kMiddle = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
constexpr std::uint32_t kFirstMiddle = 0x80;
constexpr std::uint32_t kFirstUpper = 0xA0;

std::optional<char> ByteOf(std::uint32_t character) {
    if (character < kFirstMiddle || (character >= kFirstUpper && character <= 0xFF)) {
        return static_cast<char>(character);
    }
    const auto* const found = std::ranges::find(kMiddle, character);
    if (found == kMiddle.end()) {
        return std::nullopt;
    }
    return static_cast<char>(kFirstMiddle + static_cast<std::uint32_t>(found - kMiddle.begin()));
}

std::uint32_t CharacterOf(char byte) {
    const std::uint32_t number = static_cast<unsigned char>(byte);
    const bool isMiddle = number >= kFirstMiddle && number < kFirstUpper;
    return isMiddle ? kMiddle[number - kFirstMiddle] : number;
}

/// Takes one character off the front of the text.
std::uint32_t TakeCharacter(std::string_view& text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t character = length == 1 ? lead : lead & (0x7FU >> length);
    for (const char next : text.substr(1, length - 1)) {
        character = character << 6 | (static_cast<unsigned char>(next) & 0x3FU);
    }
    text.remove_prefix(std::min(length, text.size()));
    return character;
}

}  // namespace

std::optional<std::string> FromUtf8(std::string_view text) {
    std::string narrow;
    while (!text.empty()) {
        const auto byte = ByteOf(TakeCharacter(text));
        if (!byte) {
            return std::nullopt;
        }
        narrow += *byte;
    }
    return narrow;
}

std::string ToUtf8(std::string_view text) {
    std::string utf8;
    for (const char byte : text) {
        const std::uint32_t character = CharacterOf(byte);
        if (character < 0x80) {
            utf8 += byte;
        } else if (character < 0x800) {
            utf8 += static_cast<char>(0xC0 | character >> 6);
            utf8 += static_cast<char>(0x80 | (character & 0x3F));
        } else {
            utf8 += static_cast<char>(0xE0 | character >> 12);
            utf8 += static_cast<char>(0x80 | (character >> 6 & 0x3F));
            utf8 += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return utf8;
}

}  // namespace machine
