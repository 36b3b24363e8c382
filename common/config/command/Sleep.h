#pragma once

#include <cstdint>

#include "common/config/command/IConfigureCommand.h"

namespace config::command {

/// Pauses the run.
class Sleep : public IConfigureCommand {
public:
    explicit Sleep(std::uint32_t milliseconds) : milliseconds_(milliseconds) {}

    void Execute() override;
    void Reserved() override {}
    bool IsNeeded() override { return true; }
    std::string GetDescription() override;

private:
    std::uint32_t milliseconds_;
};

}  // namespace config::command
