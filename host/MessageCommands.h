#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host {

/// Adds "version", "update-info" and "send". A chosen subcommand sets `action`; `options` is read
/// when the action runs. Both must outlive `app`.
void AddMessageCommands(CLI::App& app, const CommonOptions& options, Action& action);

}  // namespace host
