#include "host/configure/SettingNames.h"

#include <algorithm>
#include <array>

#include "common/config/Event.h"
#include "common/util/Strings.h"

namespace host::configure {

namespace {

using Kind = Setting::Kind;

struct KindName {
    Kind kind;
    const char* label;
    const char* identifier;
};

constexpr std::array kNames = {
    KindName{Kind::kAdapter, "Adapter", "adapter"},
    KindName{Kind::kDhcp, "DHCP", "dhcp"},
    KindName{Kind::kAddresses, "IP addresses", "addresses"},
    KindName{Kind::kGateways, "Gateways", "gateways"},
    KindName{Kind::kDnsServers, "DNS servers", "dns-servers"},
    KindName{Kind::kDnsSuffixes, "DNS suffixes", "dns-suffixes"},
    KindName{Kind::kRoutes, "Static routes", "routes"},
    KindName{Kind::kWorkgroup, "Workgroup", "workgroup"},
    KindName{Kind::kDomain, "Domain", "domain"},
    KindName{Kind::kUnit, "Unit", "unit"},
    KindName{Kind::kComputerName, "Computer name", "computer-name"},
    KindName{Kind::kAccount, "Account", "account"},
    KindName{Kind::kRestartAnswer, "Restart", "restart-answer"},
    KindName{Kind::kUnused, "Not used", "unused"},
};

const KindName& NameOf(Kind kind) {
    return *std::find_if(kNames.begin(), kNames.end(),
                         [kind](const KindName& name) { return name.kind == kind; });
}

/// Whether `key` is `prefix` or `prefix` with something behind it that begins as given.
bool StartsWith(std::string_view key, std::string_view prefix) {
    return util::NoCaseEqual(key.substr(0, prefix.size()), prefix);
}

}  // namespace

const char* Label(Kind kind) {
    return NameOf(kind).label;
}

const char* Identifier(Kind kind) {
    return NameOf(kind).identifier;
}

bool IsAccountKey(std::string_view key) {
    return util::NoCaseEqual(key, "DomainUsername") || util::NoCaseEqual(key, "DomainPassword");
}

bool LeadsTo(std::string_view key, Kind kind) {
    const auto is = [key](std::string_view name) { return util::NoCaseEqual(key, name); };
    switch (kind) {
        case Kind::kAdapter:
            return is("Description");
        case Kind::kDhcp:
            return is("DHCP");
        case Kind::kAddresses:
            return is("DHCP") || is("Address") || is("Netmask");
        case Kind::kGateways:
            return is("Gateway");
        case Kind::kDnsServers:
            return StartsWith(key, "DNS-Server");
        case Kind::kDnsSuffixes:
            return is("DNS-SuffixSearchOrder");
        case Kind::kRoutes:
            return is("Static-Route-Count") || StartsWith(key, "Route");
        case Kind::kWorkgroup:
        case Kind::kDomain:
            return is("Workgroup") || is("Domain") || is("DNSDomain");
        case Kind::kUnit:
            return is("DSOrganizationalUnit");
        case Kind::kComputerName:
            return is("ComputerName");
        case Kind::kAccount:
        case Kind::kRestartAnswer:
        case Kind::kUnused:
            break;
    }
    return false;
}

std::optional<Kind> KindOfEvent(std::uint32_t event) {
    namespace Event = config::Event;
    switch (event) {
        case Event::GATEWAY:
            return Kind::kGateways;
        case Event::DNS_SERVER:
            return Kind::kDnsServers;
        case Event::DNS_SUFFIX:
            return Kind::kDnsSuffixes;
        case Event::WORKGROUP:
            return Kind::kWorkgroup;
        case Event::DOMAIN:
            return Kind::kDomain;
        case Event::ORGANIZATIONAL_UNIT:
            return Kind::kUnit;
        case Event::COMPUTER_NAME:
            return Kind::kComputerName;
        default:
            return std::nullopt;
    }
}

std::string RouteText(const std::string& destination, const std::string& mask,
                      const std::string& gateway, std::int32_t metric) {
    const auto orNothing = [](const std::string& text) { return text.empty() ? "?" : text; };
    return orNothing(destination) + " mask " + orNothing(mask) + " via " + orNothing(gateway) +
           " metric " + util::IntToString(metric);
}

}  // namespace host::configure
