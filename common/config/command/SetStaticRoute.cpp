#include "common/config/command/SetStaticRoute.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include "common/err/GeneralError.h"
#include "common/proc/RunCommand.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"

namespace config::command {

namespace {

constexpr const char* kSource = "SetStaticRoute";

std::vector<ipc::RouteKey> MachineRoutes() {
    std::vector<sys::RouteRecord> rows;
    sys::getStaticRoutes(rows);
    std::vector<ipc::RouteKey> routes;
    routes.reserve(rows.size());
    for (const sys::RouteRecord& row : rows) {
        routes.push_back(
            {row.destination, row.mask, row.nextHop, static_cast<std::int32_t>(row.metric)});
    }
    return routes;
}

void RunChange(const std::string& commandLine, const char* message, std::int32_t line) {
    const std::int32_t exitCode = proc::RunCommand(commandLine);
    if (exitCode != 0) {
        throw ConfigError(kSource, message, line, ErrorKind::kProgramFailed, exitCode);
    }
}

}  // namespace

void SetStaticRoute::AddRoute(const ipc::RouteKey& route) {
    wanted_.push_back(route);
    compared_ = false;
}

bool SetStaticRoute::IsNeeded() {
    Compare();
    return !toDelete_.empty() || !toAdd_.empty();
}

std::string SetStaticRoute::GetDescription() {
    Compare();
    return {};
}

void SetStaticRoute::Execute() {
    Compare();
    for (const ipc::RouteKey& route : toDelete_) {
        // The destination alone: every route to it goes, whatever its mask or gateway.
        RunChange(util::Format("route DELETE %s", route.destination.ToString().c_str()),
                  "Failed to delete static route", 149);
    }
    for (const ipc::RouteKey& route : toAdd_) {
        RunChange(
            util::Format("route -p ADD %s mask %s %s METRIC %d",
                         route.destination.ToString().c_str(), route.netmask.ToString().c_str(),
                         route.gateway.ToString().c_str(), route.metric),
            "Failed to add static route", 151);
    }
}

void SetStaticRoute::Compare() {
    if (compared_) {
        return;
    }
    std::vector<ipc::RouteKey> machine = MachineRoutes();
    const ipc::IPv4Address zero("0.0.0.0");
    const auto defaultRoute = std::ranges::find_if(machine, [&zero](const ipc::RouteKey& route) {
        return route.destination == zero && route.netmask == zero;
    });
    if (defaultRoute != machine.end()) {
        machine.erase(defaultRoute);  // the first only: later ones are deleted unless wanted
    }
    constexpr std::less<> kOrder;
    std::ranges::sort(wanted_, kOrder);
    std::ranges::sort(machine, kOrder);
    toAdd_.clear();
    toDelete_.clear();
    std::ranges::set_difference(machine, wanted_, std::back_inserter(toDelete_), kOrder);
    std::ranges::set_difference(wanted_, machine, std::back_inserter(toAdd_), kOrder);
    compared_ = true;
}

}  // namespace config::command
