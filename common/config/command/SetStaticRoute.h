#pragma once

#include <vector>

#include "common/config/command/IConfigureCommand.h"
#include "common/ipc/RouteKey.h"

namespace config::command {

/// Makes the machine's persistent IPv4 routes equal to the configuration's, with one run of the
/// system's route program per change. The machine's first default route is spared: it is never
/// deleted, and a wanted route equal to it is added.
class SetStaticRoute : public IConfigureCommand {
public:
    void AddRoute(const ipc::RouteKey& route);

    /// Deletes, then adds. Throws ConfigError (kProgramFailed, carrying the exit code) at the first
    /// change that the route program refuses; the changes after it are not attempted.
    void Execute() override;
    void Reserved() override {}
    bool IsNeeded() override;
    std::string GetDescription() override;

private:
    void Compare();

    std::vector<ipc::RouteKey> wanted_;
    std::vector<ipc::RouteKey> toAdd_;
    std::vector<ipc::RouteKey> toDelete_;
    bool compared_ = false;
};

}  // namespace config::command
