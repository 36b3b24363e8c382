#include "host/check/MachineRouteCheck.h"

#include <algorithm>
#include <set>
#include <utility>

#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/Routes.h"

namespace host::check {

namespace {

namespace model = machine::model;
using machine::PersistedRoute;
using reading::Setting;
using Wish = Setting::Kind;
using Routes = std::vector<PersistedRoute>;

bool IsToZero(const PersistedRoute& route) {
    return model::IsSameAddress(route.destination, "0.0.0.0");
}

bool Holds(const std::vector<std::string>& list, const PersistedRoute& route) {
    return std::ranges::find(list, TextOf(route)) != list.end();
}

/// What the module deletes: what it finds and the list does not have.
Routes Unwanted(const machine::State& machine, const std::vector<std::string>& wanted) {
    Routes routes = ComparedRoutes(machine);
    std::erase_if(routes, [&wanted](const PersistedRoute& route) { return Holds(wanted, route); });
    return routes;
}

bool HasDefaultRoute(const machine::State& machine) {
    return std::ranges::any_of(machine.routes, model::IsDefaultRoute) ||
           std::ranges::any_of(machine.adapters, [](const machine::Adapter& adapter) {
               return model::HasIp(adapter) && adapter.gateways && !adapter.gateways->empty();
           });
}

/// The route because of which the module runs "route DELETE 0.0.0.0"; null for none, and where
/// nothing hangs on it.
const PersistedRoute* DeletesDefaultRoutes(const Routes& unwanted, const machine::State& machine) {
    const auto found = std::ranges::find_if(unwanted, IsToZero);
    return found != unwanted.end() && HasDefaultRoute(machine) ? &*found : nullptr;
}

/// The machine once the sections have set their gateways.
machine::State AfterGateways(machine::State machine, const std::vector<Setting>& settings,
                             const std::vector<const machine::Adapter*>& bindable) {
    for (const Setting& setting : settings) {
        if (setting.kind == Wish::kGateways && setting.adapter &&
            *setting.adapter < bindable.size()) {
            machine::Adapter& adapter = *FindAdapter(machine, bindable[*setting.adapter]->index);
            adapter.dhcpEnabled = false;
            model::ReplaceGatewayRoutes(machine, adapter, reading::WantedTexts(setting));
            adapter.gateways = reading::WantedTexts(setting);
        }
    }
    return machine;
}

/// Why the module deletes what is to 0.0.0.0.
std::string Cause(const PersistedRoute& route, const machine::State& machine) {
    if (!model::IsDefaultRoute(route)) {
        return "the machine has the persistent route " + TextOf(route) +
               ", and the list has it not: the module deletes it";
    }
    std::string list;
    for (const PersistedRoute& present : machine.routes) {
        if (model::IsDefaultRoute(present)) {
            list += (list.empty() ? "" : ", ") + present.nextHop;
        }
    }
    return "the machine has more than one persistent default route (by " + list +
           "): the module keeps the first and deletes the next";
}

/// What a route that is refused comes to, and what on other versions of Windows.
std::string WhenRefused(const machine::State& machine) {
    return machine.system.versions.refusedRoute != 0
               ? "exits with 1, and the module stops with Failure 5 (on some versions of Windows "
                 "it exits with 0)"
               : "exits with 0 (on some versions of Windows with 1, and the module stops with "
                 "Failure 5)";
}

class MachineRouteCheck {
public:
    MachineRouteCheck(const Setting& setting, const machine::State& machine, Findings& findings)
        : setting_(setting),
          machine_(machine),
          findings_(findings),
          wanted_(reading::WantedTexts(setting)),
          unwanted_(Unwanted(machine, wanted_)) {}

    void CheckDefaultRoutes(const machine::State& coming) {
        const std::string effect =
            ", and route DELETE 0.0.0.0 takes the default routes of all adapters; it answers "
            "\"Success\", and no gateway is left";
        const std::string remedy =
            "keep one gateway set by hand and no other route to 0.0.0.0, or leave the routes alone "
            "with Static-Route-Count=-1";
        if (const PersistedRoute* const route = DeletesDefaultRoutes(unwanted_, machine_)) {
            Warn("default-routes", Cause(*route, machine_) + effect, remedy);
            return;
        }
        const Routes later = Unwanted(coming, wanted_);
        if (const PersistedRoute* const route = DeletesDefaultRoutes(later, coming)) {
            Warn("default-routes-next-time",
                 "with the request after this one " + Cause(*route, coming) + effect, remedy);
        }
    }

    void CheckRefused() {
        const auto first = std::ranges::find_if(machine_.routes, model::IsDefaultRoute);
        if (first != machine_.routes.end() && Holds(wanted_, *first)) {
            Warn("refused-route",
                 "the default route by " + first->nextHop +
                     " is there, and the module adds it on every request: route refuses that and " +
                     WhenRefused(machine_),
                 "leave the first default route out of the list");
        }
    }

    /// Deletions that take more than the route that they are meant for.
    void CheckShared() {
        std::set<std::string> told;
        for (const PersistedRoute& route : unwanted_) {
            if (IsToZero(route) || !told.insert(route.destination).second) {
                continue;
            }
            const auto isBeside = [&route](const PersistedRoute& other) {
                return model::IsSameAddress(other.destination, route.destination);
            };
            const auto all = std::ranges::count_if(machine_.routes, isBeside);
            const auto deletions = std::ranges::count_if(unwanted_, isBeside);
            if (all > 1) {
                WarnOfShared(route.destination, deletions<all, deletions> 1);
            }
        }
    }

private:
    void WarnOfShared(const std::string& destination, bool takesWanted, bool deletesTwice) {
        std::string effect;
        if (takesWanted) {
            effect += ", that of the list too, which only the next request adds";
        }
        if (deletesTwice) {
            effect += "; the next deletion finds none, and route " + WhenRefused(machine_);
        }
        Warn("shared-destination",
             "the machine has several persistent routes to " + destination +
                 ", and not all of them stand in the list: route DELETE " + destination +
                 " takes them all" + effect,
             "send the file again: the next request adds what is missing");
    }

    void Warn(Code code, std::string message, std::string remedy) {
        findings_.Warning(code, setting_.at.place, std::move(message), std::move(remedy));
    }

    const Setting& setting_;
    const machine::State& machine_;
    Findings& findings_;
    std::vector<std::string> wanted_;
    Routes unwanted_;
};

}  // namespace

std::string TextOf(const PersistedRoute& route) {
    return reading::RouteText(route.destination, route.mask, route.nextHop, route.metric);
}

Routes ComparedRoutes(const machine::State& machine) {
    Routes routes = machine.routes;
    const auto first = std::ranges::find_if(routes, model::IsDefaultRoute);
    if (first != routes.end()) {
        routes.erase(first);
    }
    return routes;
}

void CheckRoutesOnMachine(const std::vector<Setting>& settings, const machine::State& machine,
                          const std::vector<const machine::Adapter*>& bindable,
                          Findings& findings) {
    for (const Setting& setting : settings) {
        if (setting.kind == Wish::kRoutes) {
            MachineRouteCheck check(setting, machine, findings);
            check.CheckDefaultRoutes(AfterGateways(machine, settings, bindable));
            check.CheckRefused();
            check.CheckShared();
        }
    }
}

}  // namespace host::check
