#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/configure/Settings.h"

namespace host::configure {

/// Whether the key's value is enciphered in the file.
bool IsAccountKey(std::string_view key);

/// Whether the key is one of those that settings of the kind come from.
bool LeadsTo(std::string_view key, Setting::Kind kind);

/// The kind of setting that a value event makes on its own, if it does.
std::optional<Setting::Kind> KindOfEvent(std::uint32_t event);

/// "10.0.0.0 mask 255.0.0.0 via 10.1.1.1 metric 5"
std::string RouteText(const std::string& destination, const std::string& mask,
                      const std::string& gateway, std::int32_t metric);

}  // namespace host::configure
