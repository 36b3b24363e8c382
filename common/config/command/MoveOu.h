#pragma once

#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Moves the computer object of a member machine to another organisational unit.
class MoveOu : public DomainCommand {
public:
    explicit MoveOu(std::string unit) : unit_(std::move(unit)) {}

    void SetOrganizationalUnit(const std::string& unit) { unit_ = unit; }

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::string unit_;
};

}  // namespace config::command
