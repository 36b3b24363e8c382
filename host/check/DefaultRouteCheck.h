#pragma once

#include <string>
#include <vector>

#include "host/check/Finding.h"
#include "host/reading/Settings.h"
#include "machine/State.h"

namespace host::check {

/// `adapter 2 "Ethernet 2"`
std::string AdapterName(const machine::Adapter& adapter);

/// Warns of what a list of routes does to the machine's default routes. `bindable` are the adapters
/// that the sections get, in their order.
void CheckDefaultRoutes(const std::vector<reading::Setting>& settings,
                        const machine::State& machine,
                        const std::vector<const machine::Adapter*>& bindable, Findings& findings);

}  // namespace host::check
