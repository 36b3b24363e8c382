// What the simulated route program understands and does.
#pragma once

#include <string>
#include <vector>

#include "machine/State.h"

namespace machine {

struct RouteOutcome {
    int exitCode = 0;
    std::string output;
};

/// Runs "route" with these arguments (the program's name not among them) on a machine with these
/// routes.
RouteOutcome RunRoute(const std::vector<std::string>& arguments,
                      std::vector<PersistedRoute>& routes);

}  // namespace machine
