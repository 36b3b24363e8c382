#include "host/configure/Announcement.h"

#include <algorithm>
#include <charconv>

#include "common/logging/Phrases.h"

namespace host::configure {

namespace {

using Kind = reading::Setting::Kind;

/// What follows in a line with which `place` announces a command; nothing in another line.
std::optional<std::string_view> Announced(std::string_view line, std::string_view place) {
    constexpr std::string_view kAnnounces = logging::kAboutToExecute;
    if (!line.starts_with(place) || !line.substr(place.size()).starts_with(kAnnounces)) {
        return std::nullopt;
    }
    return line.substr(place.size() + kAnnounces.size());
}

}  // namespace

std::optional<Announcement> ReadAnnouncement(const LogLine& line) {
    if (line.level != kProgressLevel) {
        return std::nullopt;
    }
    const auto ofAdapter = Announced(line.text, logging::kRunsAdapterCommand);
    const auto announced = ofAdapter ? ofAdapter : Announced(line.text, logging::kRunsCommand);
    if (!announced) {
        return std::nullopt;
    }
    // "class config::command::SetDns (DNS Servers=...)"
    Announcement announcement;
    const std::size_t description = std::min(announced->find(" ("), announced->size());
    const std::string_view name = announced->substr(0, description);
    announcement.command = name.substr(name.rfind(':') + 1);
    if (announced->size() > description + 2) {
        announcement.description =
            announced->substr(description + 2, announced->size() - description - 3);
    }
    announcement.ofAdapter = ofAdapter.has_value();
    return announcement;
}

std::optional<std::uint32_t> ReadAdapterIndex(const LogLine& line) {
    constexpr std::string_view kIndex = logging::kAdapterIndex;
    if (line.level != kProgressLevel || !line.text.starts_with(kIndex)) {
        return std::nullopt;
    }
    std::uint32_t index = 0;
    std::from_chars(line.text.data() + kIndex.size(), line.text.data() + line.text.size(), index);
    return index;
}

std::optional<Kind> KindOf(const std::string& command) {
    struct CommandKind {
        const char* command;
        Kind kind;
    };
    constexpr CommandKind kKinds[] = {
        {"ConfigureNic", Kind::kAdapter},        {"SetDhcp", Kind::kDhcp},
        {"SetStatic", Kind::kAddresses},         {"SetGateway", Kind::kGateways},
        {"SetDns", Kind::kDnsServers},           {"SetDnsSuffix", Kind::kDnsSuffixes},
        {"SetStaticRoute", Kind::kRoutes},       {"JoinWorkgroup", Kind::kWorkgroup},
        {"JoinDomain", Kind::kDomain},           {"MoveOu", Kind::kUnit},
        {"ChangeCompName", Kind::kComputerName},
    };
    for (const CommandKind& row : kKinds) {
        if (command == row.command) {
            return row.kind;
        }
    }
    return std::nullopt;
}

}  // namespace host::configure
