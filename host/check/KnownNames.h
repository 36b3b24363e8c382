#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::check {

/// The places of a configuration file that have keys of their own.
enum class SectionRole { kGlobal, kNetworking, kAdapter, kIgnored };

/// What the module makes of a section of this name, as its walk spells it.
SectionRole RoleOf(const std::string& section);

/// How the role is called in messages: "[Networking]", "an adapter section".
const char* RoleName(SectionRole role);

/// Whether sections of the role have such a key, "DNS-Server7" and "Route0" included. Regards no
/// case.
bool IsKnownKey(SectionRole role, std::string_view key);

/// The first role that has such a key.
std::optional<SectionRole> HomeOf(std::string_view key);

/// The key of that role that was probably meant; empty when none is near.
std::string NearestKey(SectionRole role, std::string_view key);

/// The section that was probably meant; empty when none is near.
std::string NearestSection(std::string_view name);

/// The name among `names` that was probably meant; empty when none is near.
std::string Nearest(std::string_view name, const std::vector<std::string>& names);

/// How many letters must be typed, deleted, replaced or swapped with their neighbour, case aside.
std::size_t EditDistance(std::string_view left, std::string_view right);

}  // namespace host::check
