#include "common/config/command/ConfigureNic.h"

#include "common/config/command/CommandLog.h"
#include "common/err/GeneralError.h"
#include "common/logging/Phrases.h"

namespace config::command {

void ConfigureNic::Execute() {
    if (nicIndex_ == kNotSet) {
        // Logs are searched for this text as it is, with its doubled word.
        throw ConfigError("common\\config\\command\\ConfigureNic",
                          "ConfigureNic has not been been associated with a nic index", 68,
                          ErrorKind::kUnspecified);
    }
    log_.Log(logging::kProgress, "%s%d", logging::kAdapterIndex, static_cast<int>(nicIndex_));
    for (const std::unique_ptr<IConfigureCommand>& command : commands_) {
        if (auto* const nicCommand = dynamic_cast<NicCommand*>(command.get())) {
            nicCommand->SetNicIndex(nicIndex_);
        }
        if (!command->IsNeeded()) {
            continue;
        }
        LogExecution(log_, logging::kRunsAdapterCommand, *command);
        command->Execute();
    }
}

}  // namespace config::command
