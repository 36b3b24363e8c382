#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host::configure {

/// Adds "configure". A chosen subcommand sets `action`; `common` is read when the action runs.
/// Both must outlive `app`.
void AddConfigureCommand(CLI::App& app, const CommonOptions& common, Action& action);

}  // namespace host::configure
