#pragma once

#include <string>
#include <vector>

#include "host/configure/Passes.h"

namespace host::configure {

/// "Restart: no."
std::string RestartSummary(const Pass& pass);

/// What waits for the restart in the machine itself: "computer name PC7".
std::vector<std::string> RestartEffects(const machine::State& machine);

/// What the restart makes effective and what the module does after it, in lines for people; none
/// when nothing has to do with a restart.
std::vector<std::string> RestartStory(const Outcome& outcome, const std::string& file);

}  // namespace host::configure
