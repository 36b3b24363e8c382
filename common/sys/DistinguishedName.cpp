// The two operations of Domain that only work on text.
#include <string>
#include <string_view>
#include <vector>

#include "common/sys/Domain.h"
#include "common/util/Strings.h"

namespace sys {

namespace {

constexpr std::string_view kUnit = "OU=";
constexpr std::string_view kComponent = "DC=";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// Puts the parts together with the last one in front.
std::string JoinReversed(const std::vector<std::string_view>& parts, std::string_view prefix,
                         char separator) {
    std::string joined;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (part != parts.rbegin()) {
            joined += separator;
        }
        joined += prefix;
        joined += *part;
    }
    return joined;
}

std::string UnitsFromPath(std::string_view path) {
    return JoinReversed(util::SplitAt(path, '/'), kUnit, ',');
}

}  // namespace

void Domain::BuildDn(const std::string& domain, const std::string& ou, std::string& out) {
    std::string name;
    if (Contains(ou, kUnit)) {
        name = ou;
        if (Contains(ou, kComponent)) {
            out = name;
            return;
        }
    } else if (!ou.empty()) {
        name = UnitsFromPath(ou);
    }
    if (!ou.empty() && !domain.empty()) {
        name += ',';
    }
    if (Contains(domain, kComponent)) {
        name += domain;
    } else if (!domain.empty()) {
        const char* separator = "";
        for (const std::string_view part : util::SplitAt(domain, '.')) {
            name.append(separator).append(kComponent).append(part);
            separator = ",";
        }
    }
    out = name;
}

void Domain::ExtractOuPath(const std::string& dn, std::string& out, bool asDn) {
    std::vector<std::string_view> units;
    std::size_t found = dn.find(kUnit);
    while (found != std::string::npos) {
        const std::size_t start = found + kUnit.size();
        const std::size_t end = dn.find(',', start);
        const std::string_view unit = std::string_view(dn).substr(start, end - start);
        if (!units.empty() || !unit.empty()) {
            units.push_back(unit);  // an empty unit counts only above another one
        }
        found = end == std::string::npos ? end : dn.find(kUnit, end);
    }
    const std::string path = JoinReversed(units, {}, '/');
    if (asDn) {
        BuildDn({}, path, out);
    } else {
        out = path;
    }
}

}  // namespace sys
