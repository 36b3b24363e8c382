#include "host/check/Values.h"

#include <algorithm>
#include <array>

#include "common/util/Strings.h"

namespace host::check {

namespace {

/// What the module takes for a text that is no address.
constexpr std::uint32_t kNoAddress = 0xFFFFFFFF;

std::optional<std::uint32_t> ReadPart(std::string_view text) {
    std::uint32_t base = 10;
    if (text.size() > 1 && text[0] == '0') {
        const bool hexadecimal = util::ToUpper(text[1]) == 'X';
        base = hexadecimal ? 16 : 8;
        text.remove_prefix(hexadecimal ? 2 : 1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (const char character : text) {
        std::uint32_t digit = 16;
        if (util::IsDigit(character)) {
            digit = static_cast<std::uint32_t>(character - '0');
        } else if (util::IsLetter(character)) {
            digit = static_cast<std::uint32_t>(util::ToUpper(character) - 'A') + 10;
        }
        number = number * base + digit;
        if (digit >= base || number > kNoAddress) {
            return std::nullopt;
        }
    }
    return static_cast<std::uint32_t>(number);
}

/// As the system reads it: one to four numbers, decimal, octal (0...) or hexadecimal (0x...), the
/// last of which fills the bytes that are left.
std::uint32_t ReadNumbers(std::string_view text) {
    const std::vector<std::string_view> parts = util::SplitAt(text, '.');
    if (parts.size() > 4) {
        return kNoAddress;
    }
    std::uint32_t address = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::optional<std::uint32_t> part = ReadPart(parts[i]);
        const bool last = i + 1 == parts.size();
        const std::uint64_t limit = last ? std::uint64_t{1} << (8 * (4 - i)) : 256;
        if (!part || *part >= limit) {
            return kNoAddress;
        }
        address |= last ? *part : *part << (8 * (3 - i));
    }
    return address;
}

bool IsContiguous(std::uint32_t mask) {
    return (~mask & (~mask + 1)) == 0;
}

ValueFault Error(const char* code, std::string message) {
    return {Severity::kError, code, std::move(message)};
}

std::optional<ValueFault> CheckRole(AddressRole role, std::string_view text,
                                    std::uint32_t address) {
    const std::uint32_t first = address >> 24;
    switch (role) {
        case AddressRole::kHost:
        case AddressRole::kGateway:
        case AddressRole::kDnsServer:
            // A machine may well ask itself for names.
            if (first == 0 || first >= 224 || (first == 127 && role != AddressRole::kDnsServer)) {
                return Error("bad-address",
                             Quoted(text) + " is not the address of a host: Windows refuses it");
            }
            break;
        case AddressRole::kMask:
        case AddressRole::kRouteMask:
            if (!IsContiguous(address) || (address == 0 && role == AddressRole::kMask)) {
                return Error("bad-mask", Quoted(text) + " is no subnet mask: Windows refuses it");
            }
            break;
        case AddressRole::kRouteDestination:
        case AddressRole::kRouteGateway:
            break;
    }
    return std::nullopt;
}

bool HasOnly(std::string_view text, bool (*allowed)(char)) {
    return std::all_of(text.begin(), text.end(), allowed);
}

}  // namespace

std::optional<std::uint32_t> ReadAddress(std::string_view text) {
    if (!text.empty() && util::IsLetter(text.front())) {
        return std::nullopt;
    }
    return ReadNumbers(text);
}

std::string FormatAddress(std::uint32_t address) {
    return util::Format("%u.%u.%u.%u", address >> 24, address >> 16 & 0xFF, address >> 8 & 0xFF,
                        address & 0xFF);
}

bool IsWholeNumber(std::string_view text) {
    return text == util::IntToString(util::StringToInt(text));
}

std::optional<ValueFault> CheckAddress(AddressRole role, std::string_view text) {
    if (text.find_first_of(" \t\n") != std::string_view::npos) {
        return Error("bad-address",
                     Quoted(text) + " is no IPv4 address: a blank stays part of a list's item");
    }
    const std::optional<std::uint32_t> address = ReadAddress(text);
    if (!address) {
        return Error("bad-address", Quoted(text) +
                                        " is no IPv4 address: the module looks it up as a host's "
                                        "name and gives the file up where there is none");
    }
    if (*address == kNoAddress && text != "255.255.255.255") {
        return Error("bad-address",
                     (text.empty() ? std::string("an empty item") : Quoted(text)) +
                         " is no IPv4 address: the module makes 255.255.255.255 of it");
    }
    if (std::optional<ValueFault> fault = CheckRole(role, text, *address)) {
        return fault;
    }
    if (text != FormatAddress(*address)) {
        return ValueFault{Severity::kWarning, "odd-address",
                          Quoted(text) + " is read as " + FormatAddress(*address)};
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckComputerName(std::string_view name) {
    constexpr std::size_t kNetBiosLength = 15;
    if (name.empty()) {
        return Error("bad-name", "the computer name is empty: Windows refuses it");
    }
    if (name.size() > kNetBiosLength) {
        return Error("bad-name", Quoted(name) +
                                     " is longer than 15 characters: Windows cuts it, so that the "
                                     "module finds another name and renames on every request");
    }
    const auto allowed = [](char character) {
        return util::IsLetter(character) || util::IsDigit(character) || character == '-';
    };
    if (!HasOnly(name, allowed) || name.front() == '-' || name.back() == '-' ||
        HasOnly(name, util::IsDigit)) {
        return Error("bad-name", Quoted(name) +
                                     " is no computer name: letters, digits and inner hyphens, not "
                                     "digits alone; Windows refuses it");
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckWorkgroupName(std::string_view name) {
    const auto allowed = [](char character) {
        return static_cast<unsigned char>(character) >= ' ' &&
               std::string_view("\"/\\[]:|<>+=;,?*").find(character) == std::string_view::npos;
    };
    if (name.size() > 15 || !HasOnly(name, allowed)) {
        return Error("bad-name", Quoted(name) +
                                     " is no workgroup name: at most 15 characters, none of "
                                     "\"/\\[]:|<>+=;,?*; Windows refuses it");
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckDomainName(std::string_view name) {
    const auto allowed = [](char character) {
        return static_cast<unsigned char>(character) > ' ' &&
               std::string_view("\"/\\[]:|<>+=;,?*%").find(character) == std::string_view::npos;
    };
    const std::vector<std::string_view> labels = util::SplitAt(name, '.');
    const bool goodLabels = std::all_of(labels.begin(), labels.end(), [](std::string_view label) {
        return !label.empty() && label.size() <= 63;
    });
    if (name.size() > 255 || !goodLabels || !HasOnly(name, allowed)) {
        return Error("bad-name",
                     Quoted(name) + " is no domain name: there is no such domain to join");
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckUnit(std::string_view unit) {
    if (unit.find("OU=") != std::string_view::npos) {
        return std::nullopt;  // a distinguished name, taken as it stands
    }
    const std::vector<std::string_view> components = util::SplitAt(unit, '/');
    if (!unit.empty() && std::ranges::find(components, std::string_view()) != components.end()) {
        return Error("bad-unit", Quoted(unit) +
                                     " has an empty component: the module makes \"OU=\" "
                                     "of it, which names no unit");
    }
    if (unit.find_first_of("\\=,") != std::string_view::npos) {
        return ValueFault{Severity::kWarning, "odd-unit",
                          Quoted(unit) +
                              " is no slash path (East/Sales) and no distinguished name "
                              "(OU=Sales,OU=East): each part between slashes is taken "
                              "as a unit's name"};
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckSuffix(std::string_view suffix) {
    const auto allowed = [](char character) {
        return static_cast<unsigned char>(character) > ' ' &&
               std::string_view(",\\/:*?\"<>|").find(character) == std::string_view::npos;
    };
    if (suffix.empty() || suffix.size() > 255 || !HasOnly(suffix, allowed)) {
        return Error("bad-suffix",
                     (suffix.empty() ? std::string("an empty item") : Quoted(suffix)) +
                         " is no DNS suffix: Windows refuses it");
    }
    return std::nullopt;
}
}  // namespace host::check
