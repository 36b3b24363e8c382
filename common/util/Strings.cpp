#include "common/util/Strings.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace util {

std::string Format(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    return text;
}

namespace {

/// An argument list is a pointer on most platforms, and only there can it be null.
template <typename Element>
bool IsNull(Element* arguments) {
    return arguments == nullptr;
}
template <typename List>
bool IsNull(const List& /*arguments*/) {
    return false;
}

}  // namespace

std::string FormatV(const char* format, std::va_list arguments) {
    if (format == nullptr || IsNull(arguments)) {
        return {};
    }
    std::va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length <= 0) {
        return {};
    }
    std::vector<char> buffer(static_cast<std::size_t>(length) + 1);
    const int written = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    return written > 0 ? std::string(buffer.data()) : std::string();
}

std::string IntToString(std::int32_t value) {
    char buffer[12];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

namespace {

constexpr bool IsSpace(char character) noexcept {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

// atoi with the range made explicit: its answer to an overflow is undefined in C, the nearest value
// in Microsoft's library.
std::int32_t ParseDecimal(std::string_view text) noexcept {
    text.remove_prefix(
        static_cast<std::size_t>(std::ranges::find_if_not(text, IsSpace) - text.begin()));
    if (text.starts_with('+') && text.size() > 1 && IsDigit(text[1])) {
        text.remove_prefix(1);
    }
    std::int32_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return text.starts_with('-') ? std::numeric_limits<std::int32_t>::min()
                                     : std::numeric_limits<std::int32_t>::max();
    }
    return value;
}

}  // namespace

std::int32_t StringToInt(std::string_view text, std::uint32_t base) {
    if (base == 10) {
        return ParseDecimal(text);
    }
    const long long value =
        std::strtoll(std::string(text).c_str(), nullptr, static_cast<int>(base));
    return static_cast<std::int32_t>(std::clamp<long long>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

bool NoCaseLess(std::string_view left, std::string_view right) noexcept {
    // Names that are put in order begin alike: equal bytes are passed over many at a time.
    constexpr std::size_t kMany = sizeof(std::uint64_t);
    std::size_t alike = 0;
    while (alike + kMany <= std::min(left.size(), right.size()) &&
           std::memcmp(left.data() + alike, right.data() + alike, kMany) == 0) {
        alike += kMany;
    }
    left.remove_prefix(alike);
    right.remove_prefix(alike);
    return std::ranges::lexicographical_compare(left, right, [](char a, char b) {
        return static_cast<unsigned char>(ToUpper(a)) < static_cast<unsigned char>(ToUpper(b));
    });
}

bool NoCaseEqual(std::string_view left, std::string_view right) noexcept {
    // Most names are asked for as they are written: equal bytes are compared many at a time.
    return left.size() == right.size() &&
           (left == right || std::ranges::equal(left, right, [](char a, char b) {
                return ToUpper(a) == ToUpper(b);
            }));
}

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

std::string DoublePercents(std::string_view text) {
    std::string doubled;
    doubled.reserve(text.size());
    for (const char character : text) {
        doubled.append(character == '%' ? 2 : 1, character);
    }
    return doubled;
}

void SecureErase(std::string& text) noexcept {
    text.resize(text.capacity());  // never reallocates: the capacity is there
    volatile char* bytes = text.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        bytes[i] = 0;
    }
    text.clear();
}

}  // namespace util
