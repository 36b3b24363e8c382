#pragma once

#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Moves the computer object of a member machine to another organisational unit.
class MoveOu : public DomainCommand {
public:
    /// `domain` must outlive the command.
    MoveOu(sys::Domain& domain, std::string unit) : domain_(domain), unit_(std::move(unit)) {}

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    sys::Domain& domain_;
    std::string unit_;
};

}  // namespace config::command
