#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host::fleet {

/// Adds "fleet". A chosen subcommand sets `action`; `common` is read when the action runs. Both
/// must outlive `app`.
void AddFleetCommand(CLI::App& app, const CommonOptions& common, Action& action);

}  // namespace host::fleet
