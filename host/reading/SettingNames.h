#pragma once

#include "host/reading/Settings.h"

namespace host::reading {

/// "DNS servers"
const char* Label(Setting::Kind kind);

/// "dns-servers", for programs.
const char* Identifier(Setting::Kind kind);

}  // namespace host::reading
