#pragma once

#include <CLI/CLI.hpp>

#include "host/Options.h"

namespace host::snapshot {

/// Adds "snapshot". A chosen subcommand sets `action`, which must outlive `app`.
void AddSnapshotCommand(CLI::App& app, Action& action);

}  // namespace host::snapshot
