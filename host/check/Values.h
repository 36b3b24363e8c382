#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/check/Finding.h"

namespace host::check {

/// What is wrong with one value: "\"10.0.0.256\" is not an IPv4 address".
struct ValueFault {
    Severity severity;
    Code code;
    std::string message;
};

/// What an address stands for; the rules differ.
enum class AddressRole {
    kHost,
    kMask,
    kGateway,
    kDnsServer,
    kRouteDestination,
    kRouteMask,
    kRouteGateway
};

/// The address that the module makes of a text, in host byte order: 255.255.255.255 of a text that
/// is none, nothing of one that it would look up as a host name.
std::optional<std::uint32_t> ReadAddress(std::string_view text);

/// Whether the text is the number that the module reads from it, with nothing before or after.
bool IsWholeNumber(std::string_view text);

/// Nothing when the module and Windows take the text as it looks.
std::optional<ValueFault> CheckAddress(AddressRole role, std::string_view text);
std::optional<ValueFault> CheckComputerName(std::string_view name);
std::optional<ValueFault> CheckWorkgroupName(std::string_view name);
std::optional<ValueFault> CheckDomainName(std::string_view name);
std::optional<ValueFault> CheckUnit(std::string_view unit);
std::optional<ValueFault> CheckSuffix(std::string_view suffix);
}  // namespace host::check
