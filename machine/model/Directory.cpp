#include "machine/model/Directory.h"

#include <algorithm>

#include "machine/Text.h"
#include "machine/model/Identity.h"

namespace machine::model {
namespace {

struct NamePart {
    std::string type;  // lower case
    std::string value;
};
using NameParts = std::vector<NamePart>;

std::optional<NameParts> ParseDn(std::string_view dn) {
    NameParts parts;
    for (const std::string& text : Split(dn, ',')) {
        const std::string_view part = Trim(text);
        const auto equals = part.find('=');
        if (equals == std::string_view::npos || equals == 0 || equals + 1 == part.size()) {
            return std::nullopt;
        }
        parts.push_back(
            {LowerCase(Trim(part.substr(0, equals))), std::string(Trim(part.substr(equals + 1)))});
    }
    return parts;
}

/// Takes the trailing DC parts off and gives them as a DNS name.
std::string TakeDomainName(NameParts& parts) {
    std::string name;
    while (!parts.empty() && parts.back().type == "dc") {
        name.insert(0, parts.back().value + (name.empty() ? "" : "."));
        parts.pop_back();
    }
    return name;
}

std::string DomainDn(const Domain& domain) {
    std::string dn;
    for (const std::string& part : Split(domain.dnsName, '.')) {
        dn.append(",DC=").append(part);
    }
    return dn;
}

OrganizationalUnit* FindUnit(std::vector<OrganizationalUnit>& units, std::string_view name) {
    const auto found = std::ranges::find_if(
        units, [name](const OrganizationalUnit& unit) { return EqualNoCase(unit.name, name); });
    return found == units.end() ? nullptr : &*found;
}

TextList* FindComputersOf(Domain& domain, const NameParts& parts) {
    if (parts.size() == 1 && parts[0].type == "cn" && EqualNoCase(parts[0].value, "Computers")) {
        return &domain.computers;
    }
    std::vector<OrganizationalUnit>* units = &domain.units;
    OrganizationalUnit* unit = nullptr;
    const NameParts topDown(parts.rbegin(), parts.rend());
    for (const NamePart& part : topDown) {
        unit = part.type == "ou" ? FindUnit(*units, part.value) : nullptr;
        if (unit == nullptr) {
            return nullptr;
        }
        units = &unit->units;
    }
    return unit == nullptr ? nullptr : &unit->computers;
}

std::uint32_t FindContainerOf(State& state, NameParts parts, Container& container) {
    Domain* domain = FindDomain(state, TakeDomainName(parts));
    if (domain == nullptr || !domain->reachable) {
        return kServerDown;
    }
    TextList* computers = nullptr;
    if (!parts.empty()) {
        computers = FindComputersOf(*domain, parts);
        if (computers == nullptr) {
            return kNoSuchObject;
        }
    }
    container = {domain, computers};
    return kDirectoryOk;
}

TextList::iterator FindName(TextList& names, std::string_view name) {
    return std::ranges::find_if(
        names, [name](const std::string& other) { return EqualNoCase(other, name); });
}

std::uint32_t StripProvider(std::string_view adsPath, std::string_view& dn) {
    // ADSI compares the provider's name with regard to case.
    constexpr std::string_view kProvider = "LDAP://";
    if (!adsPath.starts_with(kProvider) || adsPath.size() == kProvider.size()) {
        return kBadPathname;
    }
    dn = adsPath.substr(kProvider.size());
    return kDirectoryOk;
}

std::optional<ComputerObject> FindComputerIn(std::vector<OrganizationalUnit>& units,
                                             std::string_view name, const std::string& above) {
    for (OrganizationalUnit& unit : units) {
        const std::string dn = ",OU=" + unit.name + above;
        if (const auto found = FindName(unit.computers, name); found != unit.computers.end()) {
            return ComputerObject{&unit.computers,
                                  static_cast<std::size_t>(found - unit.computers.begin()),
                                  "CN=" + *found + dn};
        }
        if (auto below = FindComputerIn(unit.units, name, dn)) {
            return below;
        }
    }
    return std::nullopt;
}

}  // namespace

Domain* FindDomain(State& state, std::string_view name) {
    const auto found = std::ranges::find_if(state.domains, [name](const Domain& domain) {
        return EqualNoCase(domain.dnsName, name) || EqualNoCase(domain.flatName, name);
    });
    return name.empty() || found == state.domains.end() ? nullptr : &*found;
}

Account* Authenticate(Domain& domain, std::string_view logonName, std::string_view password) {
    std::string_view name = logonName;
    std::string_view authority;
    if (const auto slash = name.find('\\'); slash != std::string_view::npos) {
        authority = name.substr(0, slash);
        name = name.substr(slash + 1);
    } else if (const auto at = name.find('@'); at != std::string_view::npos) {
        authority = name.substr(at + 1);
        name = name.substr(0, at);
    }
    if (!authority.empty() && !EqualNoCase(authority, domain.dnsName) &&
        !EqualNoCase(authority, domain.flatName)) {
        return nullptr;
    }
    const auto found = std::ranges::find_if(domain.accounts, [&](const Account& account) {
        return EqualNoCase(account.name, name) && account.password == password;
    });
    return found == domain.accounts.end() ? nullptr : &*found;
}

std::uint32_t FindContainerByDn(State& state, std::string_view dn, Container& container) {
    const auto parts = ParseDn(dn);
    return parts ? FindContainerOf(state, *parts, container) : kInvalidDnSyntax;
}

std::uint32_t FindContainer(State& state, std::string_view adsPath, Container& container) {
    std::string_view dn;
    const std::uint32_t code = StripProvider(adsPath, dn);
    return code == kDirectoryOk ? FindContainerByDn(state, dn, container) : code;
}

std::optional<ComputerObject> FindComputer(Domain& domain, std::string_view name) {
    const std::string domainDn = DomainDn(domain);
    if (const auto found = FindName(domain.computers, name); found != domain.computers.end()) {
        return ComputerObject{&domain.computers,
                              static_cast<std::size_t>(found - domain.computers.begin()),
                              "CN=" + *found + ",CN=Computers" + domainDn};
    }
    return FindComputerIn(domain.units, name, domainDn);
}

std::uint32_t Bind(State& state, std::string_view adsPath, std::string_view logonName,
                   std::string_view password, Container& container, Account& account) {
    std::string_view dn;
    if (const std::uint32_t code = StripProvider(adsPath, dn); code != kDirectoryOk) {
        return code;
    }
    auto parts = ParseDn(dn);
    if (!parts) {
        return kInvalidDnSyntax;
    }
    // The server checks who asks before it looks the object up.
    NameParts domainParts = *parts;
    Domain* domain = FindDomain(state, TakeDomainName(domainParts));
    if (domain == nullptr || !domain->reachable) {
        return kServerDown;
    }
    const Account* found = Authenticate(*domain, logonName, password);
    if (found == nullptr) {
        return kLogonFailure;
    }
    account = *found;
    return FindContainerOf(state, *parts, container);
}

std::uint32_t MoveComputer(State& state, std::string_view destinationPath, const Account& account,
                           std::string_view sourcePath, std::string_view newName) {
    Container destination;
    if (const std::uint32_t code = FindContainer(state, destinationPath, destination);
        code != kDirectoryOk) {
        return code;
    }
    std::string_view sourceDn;
    if (const std::uint32_t code = StripProvider(sourcePath, sourceDn); code != kDirectoryOk) {
        return code;
    }
    auto parts = ParseDn(sourceDn);
    if (!parts) {
        return kInvalidDnSyntax;
    }
    const NamePart leaf = parts->front();
    parts->erase(parts->begin());
    Container source;
    if (const std::uint32_t code = FindContainerOf(state, *parts, source); code != kDirectoryOk) {
        return code;
    }
    if (leaf.type != "cn" || source.computers == nullptr) {
        return kNoSuchObject;
    }
    const auto object = FindName(*source.computers, leaf.value);
    if (object == source.computers->end()) {
        return kNoSuchObject;
    }
    if (!account.mayMove) {
        return kAccessDenied;
    }
    if (destination.domain != source.domain) {
        return kReferral;  // platform knowledge: to another domain
    }
    if (destination.computers == nullptr) {
        return kUnwillingToPerform;
    }
    std::string name = *object;
    if (!newName.empty()) {
        const auto named = ParseDn(newName);
        if (!named || named->size() != 1 || named->front().type != "cn") {
            return kInvalidDnSyntax;
        }
        name = named->front().value;
    }
    const auto existing = FindName(*destination.computers, name);
    if (existing != destination.computers->end() &&
        !(destination.computers == source.computers && existing == object)) {
        return kAlreadyExists;
    }
    source.computers->erase(object);
    destination.computers->push_back(std::move(name));
    return kDirectoryOk;
}

std::optional<std::string> OwnDistinguishedName(State& state) {
    if (!state.membership.member) {
        return std::nullopt;
    }
    Domain* domain = FindDomain(state, state.membership.dnsDomain);
    if (domain == nullptr || !domain->reachable) {
        return std::nullopt;
    }
    // A rename changes the object at once and the machine at its next restart.
    if (state.pendingComputerName) {
        if (const auto renamed = FindComputer(*domain, NetBiosName(*state.pendingComputerName))) {
            return renamed->distinguishedName;
        }
    }
    const auto found = FindComputer(*domain, state.computerName);
    return found ? std::optional(found->distinguishedName) : std::nullopt;
}

}  // namespace machine::model
