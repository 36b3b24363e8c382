// The two operations of Domain that only work on text.
#include <string>
#include <string_view>
#include <vector>

#include "common/sys/Domain.h"

namespace sys {

namespace {

constexpr std::string_view kUnit = "OU=";
constexpr std::string_view kComponent = "DC=";

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// Calls `part` with every piece of `text` between the separators, empty ones included.
template <class Part>
void ForEachPart(std::string_view text, char separator, Part part) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(separator, start);
        part(text.substr(start, end - start));
        if (end == std::string_view::npos) {
            return;
        }
        start = end + 1;
    }
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
    std::vector<std::string_view> components;
    ForEachPart(path, '/', [&](std::string_view part) { components.push_back(part); });
    return JoinReversed(components, kUnit, ',');
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
        bool first = true;
        ForEachPart(domain, '.', [&](std::string_view part) {
            if (!first) {
                name += ',';
            }
            first = false;
            name += kComponent;
            name += part;
        });
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
