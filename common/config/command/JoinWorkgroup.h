#pragma once

#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Leaves any domain and joins a workgroup.
class JoinWorkgroup : public DomainCommand {
public:
    explicit JoinWorkgroup(std::string name) : name_(std::move(name)) {}

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::string name_;
};

}  // namespace config::command
