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

// Runs "route" with these arguments (the program's name not among them) on the machine.
RouteOutcome RunRoute(const std::vector<std::string>& arguments, State& state);

}  // namespace machine
