#pragma once

#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Renames the computer; takes effect with the next restart.
class ChangeCompName : public DomainCommand {
public:
    explicit ChangeCompName(std::string name) : name_(std::move(name)) {}

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::string name_;
};

}  // namespace config::command
