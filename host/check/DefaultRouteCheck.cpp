#include "host/check/DefaultRouteCheck.h"

#include <algorithm>

#include "machine/model/Address.h"
#include "machine/model/Routes.h"

namespace host::check {

namespace {

namespace model = machine::model;
using machine::PersistedRoute;
using reading::Setting;
using Wish = Setting::Kind;
using Routes = std::vector<PersistedRoute>;

Routes DefaultRoutes(const machine::State& machine) {
    Routes routes = machine.routes;
    std::erase_if(routes,
                  [](const PersistedRoute& route) { return !model::IsDefaultRoute(route); });
    return routes;
}

std::string Text(const PersistedRoute& route) {
    return reading::RouteText(route.destination, route.mask, route.nextHop, route.metric);
}

/// The module leaves the first default route out of its comparison and deletes the others, unless
/// they are wanted as they are.
bool DeletesDefaultRoutes(const Routes& present, const std::vector<std::string>& wanted) {
    return present.size() > 1 &&
           std::any_of(present.begin() + 1, present.end(), [&wanted](const PersistedRoute& route) {
               return std::ranges::find(wanted, Text(route)) == wanted.end();
           });
}

std::string Gateways(const Routes& routes) {
    std::string list;
    for (const PersistedRoute& route : routes) {
        list += (list.empty() ? "" : ", ") + route.nextHop;
    }
    return list;
}

/// The default routes once the sections have set their gateways.
Routes AfterGateways(machine::State machine, const std::vector<Setting>& settings,
                     const std::vector<const machine::Adapter*>& bindable) {
    for (const Setting& setting : settings) {
        if (setting.kind == Wish::kGateways && setting.adapter &&
            *setting.adapter < bindable.size()) {
            const machine::Adapter& adapter = *bindable[*setting.adapter];
            model::ReplaceGatewayRoutes(machine, adapter.gateways.value_or(machine::TextList()),
                                        reading::WantedTexts(setting));
        }
    }
    return DefaultRoutes(machine);
}

}  // namespace

void CheckDefaultRoutes(const std::vector<Setting>& settings, const machine::State& machine,
                        const std::vector<const machine::Adapter*>& bindable, Findings& findings) {
    const char* const remedy =
        "keep one gateway set by hand, or leave the routes alone with Static-Route-Count=-1";
    for (const Setting& setting : settings) {
        if (setting.kind != Wish::kRoutes) {
            continue;
        }
        const std::vector<std::string> wanted = reading::WantedTexts(setting);
        const Routes present = DefaultRoutes(machine);
        const Routes coming = AfterGateways(machine, settings, bindable);
        const std::string effect =
            ": the module keeps the first and deletes the next, and route DELETE 0.0.0.0 takes "
            "the default routes of all adapters; it answers \"Success\", and no gateway is left";
        if (DeletesDefaultRoutes(present, wanted)) {
            findings.Warning("default-routes", setting.at.place,
                             "the machine has more than one persistent default route (by " +
                                 Gateways(present) + ")" + effect,
                             remedy);
        } else if (DeletesDefaultRoutes(coming, wanted)) {
            findings.Warning("default-routes-next-time", setting.at.place,
                             "after this request the machine has more than one persistent default "
                             "route (by " +
                                 Gateways(coming) + "). With the next request" + effect,
                             remedy);
        }
        if (!present.empty() && std::ranges::find(wanted, Text(present.front())) != wanted.end()) {
            const bool tells = machine.system.versions.refusedRoute != 0;
            findings.Warning(
                "refused-route", setting.at.place,
                "the default route by " + present.front().nextHop +
                    " is there, and the module adds it again: route refuses that " +
                    (tells ? "and exits with 1, so that the module stops with Failure 5; on some "
                             "versions of Windows it exits with 0, and the route comes back in "
                             "each plan"
                           : "and exits with 0, so that it comes back in each plan; on some "
                             "versions of Windows it exits with 1, and the module stops with "
                             "Failure 5"),
                "leave the first default route out of the list");
        }
    }
}

}  // namespace host::check
