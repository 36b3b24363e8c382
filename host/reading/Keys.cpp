#include "host/reading/Keys.h"

#include <algorithm>

#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::reading {

namespace {

namespace key = config::key;

struct KnownKey {
    std::string_view name;
    SectionRole role;
    Topic topic;
    bool numbered = false;
};

constexpr KnownKey kKeys[] = {
    {key::kRebootAfterConfig, SectionRole::kGlobal, Topic::kRestartAnswer},
    {key::kComputerName, SectionRole::kNetworking, Topic::kComputerName},
    {key::kDnsDomain, SectionRole::kNetworking, Topic::kMembership},
    {key::kDsOrganizationalUnit, SectionRole::kNetworking, Topic::kUnit},
    {key::kDomain, SectionRole::kNetworking, Topic::kMembership},
    {key::kDomainPassword, SectionRole::kNetworking, Topic::kAccount},
    {key::kDomainUsername, SectionRole::kNetworking, Topic::kAccount},
    {key::kWorkgroup, SectionRole::kNetworking, Topic::kMembership},
    {key::kAddress, SectionRole::kAdapter, Topic::kAddressing},
    {key::kDhcp, SectionRole::kAdapter, Topic::kAddressing},
    {key::kDnsServerCount, SectionRole::kAdapter, Topic::kDnsServers},
    {key::kDnsSuffixSearchOrder, SectionRole::kAdapter, Topic::kDnsSuffixes},
    {key::kDescription, SectionRole::kAdapter, Topic::kAdapter},
    {key::kGateway, SectionRole::kAdapter, Topic::kGateways},
    {key::kNetmask, SectionRole::kAdapter, Topic::kAddressing},
    {key::kStaticRouteCount, SectionRole::kAdapter, Topic::kRoutes},
    {key::kDnsServer, SectionRole::kAdapter, Topic::kDnsServers, true},
    {key::kRoute, SectionRole::kAdapter, Topic::kRoutes, true},
};

bool IsCalled(const KnownKey& known, std::string_view name) {
    if (!known.numbered) {
        return util::NoCaseEqual(known.name, name);
    }
    const std::string_view stem = Stem(name);
    const std::string_view number = name.substr(stem.size());
    // The module writes its numbers without leading zeros.
    return util::NoCaseEqual(known.name, stem) && !number.empty() &&
           (number.size() == 1 || number.front() != '0');
}

}  // namespace

SectionRole RoleOf(std::string_view section) {
    switch (ConfigurationFileEvents::KindOf(section)) {
        case ConfigurationFileEvents::SectionKind::kAdapter:
            return SectionRole::kAdapter;
        case ConfigurationFileEvents::SectionKind::kNetworking:
            return SectionRole::kNetworking;
        case ConfigurationFileEvents::SectionKind::kIgnored:
            break;
    }
    // Looked up by name, which disregards case; the walk passes over it.
    return util::NoCaseEqual(section, key::kGlobal) ? SectionRole::kGlobal : SectionRole::kIgnored;
}

std::optional<Topic> TopicOf(SectionRole role, std::string_view key) {
    const auto* const found = std::ranges::find_if(
        kKeys, [&](const KnownKey& known) { return known.role == role && IsCalled(known, key); });
    return found == std::end(kKeys) ? std::nullopt : std::optional(found->topic);
}

std::optional<SectionRole> HomeOf(std::string_view key) {
    const auto* const found =
        std::ranges::find_if(kKeys, [key](const KnownKey& known) { return IsCalled(known, key); });
    return found == std::end(kKeys) ? std::nullopt : std::optional(found->role);
}

std::vector<std::string> KeysOf(SectionRole role, bool numbered) {
    std::vector<std::string> names;
    for (const KnownKey& known : kKeys) {
        if (known.role == role && known.numbered == numbered) {
            names.emplace_back(known.name);
        }
    }
    return names;
}

std::string_view Stem(std::string_view key) {
    const std::size_t last = key.find_last_not_of("0123456789");
    return key.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

}  // namespace host::reading
