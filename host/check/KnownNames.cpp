#include "host/check/KnownNames.h"

#include <algorithm>

#include "common/util/Strings.h"
#include "host/Spelling.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::check {

namespace key = config::key;

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

std::string NearestKey(SectionRole role, std::string_view key) {
    const std::vector<std::string> stems = reading::KeysOf(role, true);
    const auto isStem = [&stems](std::string_view text) {
        return std::ranges::any_of(
            stems, [text](const std::string& stem) { return util::NoCaseEqual(stem, text); });
    };
    const std::string_view stem = reading::Stem(key);
    std::string number(key.substr(stem.size()));
    if (!number.empty()) {
        const std::string numbered = isStem(stem) ? std::string(stem) : Nearest(stem, stems);
        if (!numbered.empty()) {
            number.erase(0, std::min(number.find_first_not_of('0'), number.size() - 1));
            return numbered + number;
        }
    }
    if (isStem(key)) {
        return std::string(key) + "0";
    }
    return Nearest(key, reading::KeysOf(role, false));
}

std::string NearestSection(std::string_view name) {
    // One of several adapters has a number, which is no misspelling.
    const std::string_view stem = reading::Stem(name);
    const std::string nicEntry(key::kNicEntry);
    if (!Nearest(stem, {nicEntry}).empty()) {
        return nicEntry + std::string(name.substr(stem.size()));
    }
    return Nearest(
        name, {std::string(key::kGlobal), std::string(key::kNetworking), std::string(key::kTcpIp)});
}

}  // namespace host::check
