#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "common/config/command/DomainCommand.h"

namespace config::command {

/// Joins a domain, creating the computer object in an organisational unit where one is given.
class JoinDomain : public DomainCommand {
public:
    /// `domain` must outlive the command. No event gives a Windows domain name; it stays empty.
    JoinDomain(sys::Domain& domain, std::string dnsDomain)
        : domain_(domain), dnsDomain_(std::move(dnsDomain)) {}

    void SetOrganizationalUnit(const std::string& unit) { unit_ = unit; }

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    sys::Domain& domain_;
    std::string dnsDomain_;
    std::string windowsDomain_;
    std::string unit_;
    std::int32_t option_ = 0;
};

}  // namespace config::command
