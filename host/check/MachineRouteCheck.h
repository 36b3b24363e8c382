#pragma once

#include <string>
#include <vector>

#include "host/check/Finding.h"
#include "host/reading/Settings.h"
#include "machine/State.h"

namespace host::check {

/// `adapter 2 "Ethernet 2"`
std::string AdapterName(const machine::Adapter& adapter);

/// "10.0.0.0 mask 255.0.0.0 via 10.1.1.1 metric 5", as a setting asks for it.
std::string TextOf(const machine::PersistedRoute& route);

/// The routes that the module compares a list with: it leaves out the first default route.
std::vector<machine::PersistedRoute> ComparedRoutes(const machine::State& machine);

/// Warns of what a list of routes takes with it: the module deletes by destination alone.
/// `bindable` are the adapters that the sections get, in their order.
void CheckRoutesOnMachine(const std::vector<reading::Setting>& settings,
                          const machine::State& machine,
                          const std::vector<const machine::Adapter*>& bindable, Findings& findings);

}  // namespace host::check
