#include "host/check/Values.h"

#include <algorithm>

#include "common/ipc/IpAddress.h"
#include "common/util/Strings.h"
#include "machine/model/Address.h"
#include "machine/model/Names.h"

namespace host::check {

namespace model = machine::model;

namespace {

/// What the module takes for a text that is no address.
constexpr std::uint32_t kNoAddress = 0xFFFFFFFF;

ValueFault Error(Code code, std::string message) {
    return {Severity::kError, code, std::move(message)};
}

/// Whether Windows takes the address in that role.
bool IsTaken(AddressRole role, std::uint32_t address) {
    switch (role) {
        case AddressRole::kHost:
        case AddressRole::kGateway:
            return model::IsHost(address);
        case AddressRole::kDnsServer:
            return model::IsDnsServer(address);
        case AddressRole::kMask:
            return model::IsAdapterMask(address);
        case AddressRole::kRouteMask:
            return model::IsMask(address);
        case AddressRole::kRouteDestination:
        case AddressRole::kRouteGateway:
            break;
    }
    return true;
}

}  // namespace

std::optional<std::uint32_t> ReadAddress(std::string_view text) {
    if (!text.empty() && util::IsLetter(text.front())) {
        return std::nullopt;
    }
    return ipc::IPv4Address(std::string(text)).HostOrder();
}

bool IsWholeNumber(std::string_view text) {
    return text == util::IntToString(util::StringToInt(text));
}

std::optional<ValueFault> CheckAddress(AddressRole role, std::string_view text) {
    const std::optional<std::uint32_t> address = ReadAddress(text);
    if (!address) {
        return Error("bad-address",
                     Quoted(text) +
                         " is not an IPv4 address: the module looks it up as a host's "
                         "name and gives the file up where there is none");
    }
    if (*address == kNoAddress && text != "255.255.255.255") {
        return Error("bad-address",
                     (text.empty() ? std::string("an empty item") : Quoted(text)) +
                         " is not an IPv4 address: the module makes 255.255.255.255 of it" +
                         (text.starts_with(' ') ? " for the blank in front of it" : ""));
    }
    if (!IsTaken(role, *address)) {
        const bool isMask = role == AddressRole::kMask || role == AddressRole::kRouteMask;
        const bool leavesNoRoom = role == AddressRole::kMask && *address == kNoAddress;
        return isMask ? Error("bad-mask",
                              Quoted(text) + (leavesNoRoom
                                                  ? " leaves no room for a gateway or another "
                                                    "host: Windows refuses it with 66; take the "
                                                    "network's mask"
                                                  : " is no subnet mask: Windows refuses it"))
                      : Error("bad-address",
                              Quoted(text) + " is not the address of a host: Windows refuses it");
    }
    if (text != model::FormatAddress(*address)) {
        return ValueFault{Severity::kWarning, "odd-address",
                          Quoted(text) + " is read as " + model::FormatAddress(*address)};
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckComputerName(std::string_view name) {
    if (name.empty()) {
        return Error("bad-name", "the computer name is empty: Windows refuses it");
    }
    if (name.size() > model::kLongestNetBiosName) {
        return Error("bad-name", Quoted(name) +
                                     " is longer than 15 characters: Windows cuts it, so that the "
                                     "module finds another name and renames on every request");
    }
    if (!model::IsHostName(name)) {
        return Error("bad-name",
                     Quoted(name) +
                         " is not a valid computer name: letters, digits and inner hyphens, not "
                         "digits alone; Windows refuses it");
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckWorkgroupName(std::string_view name) {
    if (!model::IsNetBiosName(name)) {
        return Error("bad-name",
                     Quoted(name) +
                         " is not a valid workgroup name: at most 15 characters, none of "
                         "\"/\\[]:|<>+=;,?*; Windows refuses it");
    }
    return std::nullopt;
}

std::optional<ValueFault> CheckDomainName(std::string_view name) {
    if (!model::IsDomainName(name)) {
        return Error("bad-name",
                     Quoted(name) + " is not a valid domain name: there is no such domain to join");
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
    if (!model::IsSuffix(suffix)) {
        return Error("bad-suffix",
                     (suffix.empty() ? std::string("an empty item") : Quoted(suffix)) +
                         " is not a DNS suffix: Windows refuses it");
    }
    return std::nullopt;
}
}  // namespace host::check
