#pragma once

#include "common/config/command/IConfigureCommand.h"

namespace config::command {

/// Marks where a run stops for a restart. Put into the list by the analyzer only; the run
/// recognises it by its class and never executes it.
class Reboot : public IConfigureCommand {
public:
    void Execute() override {}
    void Reserved() override {}
    bool IsNeeded() override { return true; }
    std::string GetDescription() override { return {}; }
};

}  // namespace config::command
