// What Windows takes as a name: the one set of rules, for the machine that refuses a name and for
// whoever says beforehand that it will.
#pragma once

#include <cstddef>
#include <string_view>

namespace machine::model {

/// Longer computer names are cut for NetBIOS.
inline constexpr std::size_t kLongestNetBiosName = 15;
inline constexpr std::size_t kLongestDomainName = 255;

/// What a workgroup may be called.
bool IsNetBiosName(std::string_view name);
/// What a computer may be called.
bool IsHostName(std::string_view name);
/// What a domain can be called.
bool IsDomainName(std::string_view name);
/// What may stand in a DNS suffix search list.
bool IsSuffix(std::string_view suffix);

}  // namespace machine::model
