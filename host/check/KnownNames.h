#pragma once

#include <string>
#include <string_view>

#include "host/reading/Keys.h"

namespace host::check {

using reading::SectionRole;

/// How the role is called in messages: "[Networking]", "an adapter section".
const char* RoleName(SectionRole role);

/// The key of that role that was probably meant; empty when none is near.
std::string NearestKey(SectionRole role, std::string_view key);

/// The section that was probably meant; empty when none is near.
std::string NearestSection(std::string_view name);

}  // namespace host::check
