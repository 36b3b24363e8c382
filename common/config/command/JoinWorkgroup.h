#pragma once

#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Leaves any domain and joins a workgroup.
class JoinWorkgroup : public DomainCommand {
public:
    /// `domain` must outlive the command.
    JoinWorkgroup(sys::Domain& domain, std::string name)
        : domain_(domain), name_(std::move(name)) {}

    /// Whether the machine is a member of a domain now; leaving it takes a restart.
    bool LeavesDomain();

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    sys::Domain& domain_;
    std::string name_;
};

}  // namespace config::command
