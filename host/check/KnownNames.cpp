#include "host/check/KnownNames.h"

#include <algorithm>

#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

namespace {

/// A name longer than this is no misspelling, and comparing it would take long.
constexpr std::size_t kLongestName = 40;

const std::vector<std::string>& KeysOf(SectionRole role) {
    static const std::vector<std::string> global{"RebootAfterConfig"};
    static const std::vector<std::string> networking{
        "ComputerName",   "DNSDomain", "DSOrganizationalUnit", "Domain", "DomainPassword",
        "DomainUsername", "Workgroup"};
    static const std::vector<std::string> adapter{
        "Address",     "DHCP",    "DNS-Server-Count", "DNS-SuffixSearchOrder",
        "Description", "Gateway", "Netmask",          "Static-Route-Count"};
    static const std::vector<std::string> none;
    switch (role) {
        case SectionRole::kGlobal:
            return global;
        case SectionRole::kNetworking:
            return networking;
        case SectionRole::kAdapter:
            return adapter;
        case SectionRole::kIgnored:
            break;
    }
    return none;
}

/// Keys of an adapter that are followed by a number.
const std::vector<std::string>& NumberedKeys() {
    static const std::vector<std::string> stems{"DNS-Server", "Route"};
    return stems;
}

std::string_view Stem(std::string_view key) {
    const std::size_t last = key.find_last_not_of("0123456789");
    return key.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

bool HasName(const std::vector<std::string>& names, std::string_view name) {
    return std::any_of(names.begin(), names.end(),
                       [name](const std::string& known) { return util::NoCaseEqual(known, name); });
}

bool Contains(std::string_view text, std::string_view part) {
    const auto same = [](char left, char right) {
        return util::ToUpper(left) == util::ToUpper(right);
    };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), same) != text.end();
}

}  // namespace

SectionRole RoleOf(const std::string& section) {
    switch (ConfigurationFileEvents::KindOf(section)) {
        case ConfigurationFileEvents::SectionKind::kAdapter:
            return SectionRole::kAdapter;
        case ConfigurationFileEvents::SectionKind::kNetworking:
            return SectionRole::kNetworking;
        case ConfigurationFileEvents::SectionKind::kIgnored:
            break;
    }
    // Looked up by name, which disregards case; the walk passes over it.
    return util::NoCaseEqual(section, "Global") ? SectionRole::kGlobal : SectionRole::kIgnored;
}

const char* RoleName(SectionRole role) {
    switch (role) {
        case SectionRole::kGlobal:
            return "[Global]";
        case SectionRole::kNetworking:
            return "[Networking]";
        case SectionRole::kAdapter:
            return "an adapter section";
        case SectionRole::kIgnored:
            break;
    }
    return "a section that the module ignores";
}

bool IsKnownKey(SectionRole role, std::string_view key) {
    if (HasName(KeysOf(role), key)) {
        return true;
    }
    const std::string_view stem = Stem(key);
    const std::string_view number = key.substr(stem.size());
    // The module writes its numbers without leading zeros.
    return role == SectionRole::kAdapter && HasName(NumberedKeys(), stem) && !number.empty() &&
           (number.size() == 1 || number.front() != '0');
}

std::optional<SectionRole> HomeOf(std::string_view key) {
    for (const SectionRole role :
         {SectionRole::kGlobal, SectionRole::kNetworking, SectionRole::kAdapter}) {
        if (IsKnownKey(role, key)) {
            return role;
        }
    }
    return std::nullopt;
}

std::string NearestKey(SectionRole role, std::string_view key) {
    const std::string_view stem = Stem(key);
    std::string number(key.substr(stem.size()));
    if (role == SectionRole::kAdapter && !number.empty()) {
        const std::string numbered =
            HasName(NumberedKeys(), stem) ? std::string(stem) : Nearest(stem, NumberedKeys());
        if (!numbered.empty()) {
            number.erase(0, std::min(number.find_first_not_of('0'), number.size() - 1));
            return numbered + number;
        }
    }
    if (role == SectionRole::kAdapter && HasName(NumberedKeys(), key)) {
        return std::string(key) + "0";
    }
    return Nearest(key, KeysOf(role));
}

std::string NearestSection(std::string_view name) {
    // One of several adapters has a number, which is no misspelling.
    const std::string_view stem = Stem(name);
    if (util::NoCaseEqual(Nearest(stem, {"NicEntry"}), "NicEntry")) {
        return "NicEntry" + std::string(name.substr(stem.size()));
    }
    return Nearest(name, {"Global", "Networking", "TCP/IP"});
}

std::string Nearest(std::string_view name, const std::vector<std::string>& names) {
    std::string nearest;
    std::size_t least = kLongestName;
    for (const std::string& known : names) {
        const std::size_t limit = std::max<std::size_t>(1, known.size() / 4);
        if (std::max(name.size(), known.size()) - std::min(name.size(), known.size()) > limit) {
            continue;
        }
        const std::size_t distance = EditDistance(name, known);
        if (distance <= limit && distance < least) {
            least = distance;
            nearest = known;
        }
    }
    for (const std::string& known : names) {
        // "DefaultGateway" for "Gateway"
        if (nearest.empty() && known.size() >= 6 && Contains(name, known)) {
            nearest = known;
        }
    }
    return nearest;
}

std::size_t EditDistance(std::string_view left, std::string_view right) {
    if (left.size() > kLongestName || right.size() > kLongestName) {
        return kLongestName;
    }
    const auto same = [&](std::size_t i, std::size_t j) {
        return util::ToUpper(left[i]) == util::ToUpper(right[j]);
    };
    std::vector<std::vector<std::size_t>> cost(left.size() + 1,
                                               std::vector<std::size_t>(right.size() + 1));
    for (std::size_t i = 0; i <= left.size(); ++i) {
        for (std::size_t j = 0; j <= right.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1,
                                   cost[i - 1][j - 1] + (same(i - 1, j - 1) ? 0U : 1U)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1)) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[left.size()][right.size()];
}

}  // namespace host::check
