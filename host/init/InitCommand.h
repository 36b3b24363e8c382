#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host::init {

/// Adds "init". A chosen subcommand sets `action`; `common` and `action` must outlive `app`.
void AddInitCommand(CLI::App& app, const CommonOptions& common, Action& action);

}  // namespace host::init
