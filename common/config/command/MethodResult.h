#pragma once

#include <cstdint>

namespace config::command {

/// Throws ConfigError (kMethodFailed), carrying the value, unless a WMI method's return value says
/// that it worked: 0, or 1 where a restart completes it. `source` and `message` are static texts.
void CheckMethodResult(std::uint32_t returnValue, const char* source, const char* message,
                       std::int32_t line);

}  // namespace config::command
