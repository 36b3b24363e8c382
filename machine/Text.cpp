#include "machine/Text.h"

#include <algorithm>

namespace machine {
namespace {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool EqualNoCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right,
                              [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return LowerCase(c); });
    return lower;
}

bool ContainsNoCase(std::string_view text, std::string_view part) {
    return LowerCase(text).find(LowerCase(part)) != std::string::npos;
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::string Join(const std::vector<std::string>& parts, std::string_view separator) {
    std::string joined;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i != 0) {
            joined += separator;
        }
        joined += parts[i];
    }
    return joined;
}

std::string Hex(std::uint64_t number) {
    std::string digits;
    do {
        digits.insert(digits.begin(), "0123456789ABCDEF"[number % 16]);
        number /= 16;
    } while (number != 0);
    return "0x" + digits;
}

std::string OrEmpty(const char* text) {
    return text == nullptr ? std::string() : text;
}

}  // namespace machine
