#pragma once

#include <functional>
#include <string>

#include "host/Output.h"

namespace host {

/// What every subcommand may be told.
struct CommonOptions {
    std::string module;  ///< the module's file
    Format format = Format::kText;
    Colours colours = Colours::kAuto;
};

/// What the parsed command line asks for. Returns the exit code; throws HostError.
using Action = std::function<int(Output&)>;

}  // namespace host
