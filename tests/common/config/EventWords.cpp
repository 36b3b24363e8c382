#include "tests/common/config/EventWords.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "common/util/Strings.h"

namespace config_tests {

namespace {

constexpr std::string_view kKindNames[] = {
    "NAME",   "WORKGROUP", "DOMAIN",  "USER",    "PASSWORD", "OU",  "NIC",    "DHCP",
    "STATIC", "IP",        "ADDRESS", "MASK",    "GW",       "DNS", "SUFFIX", "ROUTE",
    "RGW",    "FIELD4",    "METRIC",  "IGNORED", "",         "BUS", "DEVICE", "FUNCTION"};

std::uint32_t KindOf(const std::string& name) {
    if (name.starts_with('#')) {
        return static_cast<std::uint32_t>(std::stoul(name.substr(1)));
    }
    const auto* const found = std::find(std::begin(kKindNames), std::end(kKindNames), name);
    if (found == std::end(kKindNames)) {
        throw std::invalid_argument("no event: " + name);
    }
    return static_cast<std::uint32_t>(found - std::begin(kKindNames));
}

}  // namespace

void Send(config::ConfigBuilder& builder, std::string_view words) {
    while (!words.empty()) {
        std::string_view word = words.substr(0, words.find_first_of(" ("));
        words.remove_prefix(word.size());
        std::string value;
        if (words.starts_with('(')) {
            value = words.substr(1, words.find(')') - 1);
            words.remove_prefix(value.size() + 2);
        }
        words = util::TrimBlanks(words);

        const char sign = word.front();
        const bool hasSign = sign == '+' || sign == '-';
        word.remove_prefix(hasSign ? 1 : 0);
        const std::uint32_t type = sign == '+'   ? config::Event::BEGIN
                                   : sign == '-' ? config::Event::END
                                                 : config::Event::VALUE;
        builder.ConfigEvent(word.empty() ? config::Event::NIC : KindOf(std::string(word)), type,
                            value);
    }
}

}  // namespace config_tests
