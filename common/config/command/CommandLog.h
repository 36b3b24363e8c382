#pragma once

#include "common/config/command/IConfigureCommand.h"
#include "common/logging/LogSink.h"

namespace config::command {

/// Logs that `command` is about to be executed, with its class and its description. `place` is the
/// function that executes it.
void LogExecution(logging::ILogSink& log, const char* place, IConfigureCommand& command);

}  // namespace config::command
