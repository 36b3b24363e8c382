#include "common/config/command/CommandLog.h"

#include "common/lang/ClassName.h"
#include "common/logging/Phrases.h"
#include "common/util/Strings.h"

namespace config::command {

void LogExecution(logging::ILogSink& log, const char* place, IConfigureCommand& command) {
    const std::string description = util::DoublePercents(command.GetDescription());
    log.Log(logging::kProgress, "%s%s%s (%s)", place, logging::kAboutToExecute,
            lang::ClassName(typeid(command)).c_str(), description.c_str());
}

}  // namespace config::command
