#pragma once

#include <string>
#include <vector>

#include "common/config/command/NicCommand.h"
#include "common/ipc/IpAddress.h"

namespace config::command {

/// Gives an adapter its DNS servers, in order.
class SetDns : public NicCommand {
public:
    /// Throws ipc::CIPAddressError for a host name that does not resolve.
    void Add(const std::string& server) { servers_.emplace_back(server); }

    void Execute() override;
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    std::vector<ipc::IPv4Address> servers_;
};

}  // namespace config::command
