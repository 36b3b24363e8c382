// What the sections and keys of a configuration file are about.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::reading {

/// The places of a configuration file that have keys of their own.
enum class SectionRole { kGlobal, kNetworking, kAdapter, kIgnored };

/// What the module makes of a section of this name, as its walk spells it.
SectionRole RoleOf(std::string_view section);

/// What a key has a say in.
enum class Topic {
    kRestartAnswer,
    kAccount,
    kMembership,
    kUnit,
    kComputerName,
    kAdapter,
    kAddressing,
    kGateways,
    kDnsServers,
    kDnsSuffixes,
    kRoutes,
};

/// The topic of such a key in sections of the role, "DNS-Server7" and "Route0" included; none of a
/// key that the module never asks for. Regards no case.
std::optional<Topic> TopicOf(SectionRole role, std::string_view key);

/// The first role that has such a key.
std::optional<SectionRole> HomeOf(std::string_view key);

/// The keys of the role; those that a number follows only when `numbered`.
std::vector<std::string> KeysOf(SectionRole role, bool numbered);

/// The key without the number at its end.
std::string_view Stem(std::string_view key);

}  // namespace host::reading
