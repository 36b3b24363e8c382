#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host::check {

/// Adds "check". A chosen subcommand sets `action`, which must outlive `app`.
void AddCheckCommand(CLI::App& app, Action& action);

}  // namespace host::check
