#pragma once

#include <string>
#include <vector>

#include "common/config/command/NicCommand.h"
#include "common/ipc/IpAddress.h"

namespace config::command {

/// Gives an adapter its default gateways, in order.
class SetGateway : public NicCommand {
public:
    /// Throws ipc::CIPAddressError for a host name that does not resolve.
    void Add(const std::string& gateway) { gateways_.emplace_back(gateway); }

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::vector<ipc::IPv4Address> gateways_;
};

}  // namespace config::command
