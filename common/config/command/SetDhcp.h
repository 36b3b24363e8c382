#pragma once

#include "common/config/command/NicCommand.h"

namespace config::command {

/// Puts an adapter on DHCP.
class SetDhcp : public NicCommand {
public:
    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override { return {}; }
};

}  // namespace config::command
