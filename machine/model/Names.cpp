#include "machine/model/Names.h"

#include <algorithm>
#include <string>

#include "machine/Text.h"

namespace machine::model {
namespace {

constexpr std::size_t kLongestLabel = 63;

/// None of the characters, and none below `first`: no control characters, perhaps no blank.
bool HasNone(std::string_view text, std::string_view characters, char first) {
    return std::ranges::none_of(text, [&](char c) {
        return static_cast<unsigned char>(c) < static_cast<unsigned char>(first) ||
               characters.find(c) != std::string_view::npos;
    });
}

constexpr std::string_view kNotInNetBiosNames = "\"/\\[]:|<>+=;,?*";

}  // namespace

bool IsNetBiosName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestNetBiosName &&
           HasNone(name, kNotInNetBiosNames, ' ');
}

bool IsHostName(std::string_view name) {
    const auto isAllowed = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '-';
    };
    const bool onlyDigits = name.find_first_not_of("0123456789") == std::string_view::npos;
    return !name.empty() && name.size() <= kLongestLabel && !onlyDigits && name.front() != '-' &&
           name.back() != '-' && std::ranges::all_of(name, isAllowed);
}

bool IsDomainName(std::string_view name) {
    const bool goodLabels = std::ranges::all_of(Split(name, '.'), [](const std::string& label) {
        return !label.empty() && label.size() <= kLongestLabel;
    });
    return name.size() <= kLongestDomainName && goodLabels &&
           HasNone(name, kNotInNetBiosNames, '!') && name.find('%') == std::string_view::npos;
}

bool IsSuffix(std::string_view suffix) {
    return !suffix.empty() && suffix.size() <= kLongestDomainName &&
           HasNone(suffix, ",\\/:*?\"<>|", '!');
}

}  // namespace machine::model
