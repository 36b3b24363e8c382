#pragma once

#include <string>
#include <vector>

#include "common/config/command/NicCommand.h"
#include "common/ipc/IpAddress.h"

namespace config::command {

/// Gives an adapter static addresses and masks, paired by position.
class SetStatic : public NicCommand {
public:
    /// Throw ipc::CIPAddressError for a host name that does not resolve.
    void AddAddress(const std::string& address) { addresses_.emplace_back(address); }
    void AddMask(const std::string& mask) { masks_.emplace_back(mask); }

    void Execute() override;
    /// Compares the first address alone; masks and further addresses are not looked at.
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::vector<ipc::IPv4Address> addresses_;
    std::vector<ipc::IPv4Address> masks_;
};

}  // namespace config::command
