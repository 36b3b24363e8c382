#include "host/reading/SettingNames.h"

#include <algorithm>
#include <array>

namespace host::reading {

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
    return *std::ranges::find_if(kNames,
                                 [kind](const KindName& name) { return name.kind == kind; });
}

}  // namespace

const char* Label(Kind kind) {
    return NameOf(kind).label;
}

const char* Identifier(Kind kind) {
    return NameOf(kind).identifier;
}

}  // namespace host::reading
