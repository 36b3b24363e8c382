// The module's lines of progress, as far as something follows from them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/LogSink.h"
#include "host/reading/Settings.h"
#include "machine/State.h"

namespace host::configure {

/// The level at which the module logs what it is about to execute.
constexpr std::uint32_t kProgressLevel = 2;

/// A command that the module is about to execute.
struct Announcement {
    std::string command;      ///< "SetDns"; "ConfigureNic" for an adapter's section as a whole
    std::string description;  ///< the module's own
    bool ofAdapter = false;   ///< one of the commands of a ConfigureNic
};

/// None where the line announces no command.
std::optional<Announcement> ReadAnnouncement(const LogLine& line);

/// The WMI index of the adapter that the module has chosen for the ConfigureNic announced last;
/// none where the line does not tell it.
std::optional<std::uint32_t> ReadAdapterIndex(const LogLine& line);

/// The settings that a command is about; none for one that is about no setting.
std::optional<reading::Setting::Kind> KindOf(const std::string& command);

}  // namespace host::configure
