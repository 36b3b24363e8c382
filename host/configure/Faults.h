// The rules of --fail.
#pragma once

#include <string>
#include <vector>

#include "host/Output.h"
#include "host/configure/Passes.h"
#include "machine/FaultPlan.h"

namespace host::configure {

/// The plan of all texts given. Throws HostError (wrong usage) where one is empty or wrong.
machine::FaultPlan ParseFaults(const std::vector<std::string>& texts);

/// Names the rules that nothing met (misspelt, or about calls that the run does not make), and
/// those whose failing calls the module passed over: it went on as if nothing had happened.
void NoteIdleFaults(const Outcome& outcome, Output& output);

}  // namespace host::configure
