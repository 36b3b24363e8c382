#pragma once

#include <string>
#include <vector>

#include "machine/Simulation.h"

namespace host::configure {

/// What the module did to the simulated machine that no program may do: things not given back,
/// given back twice, calls that the machine cannot answer. The ledger is cleared, for the module is
/// done. `calls` are those of the run, `unexpectedBefore` the number of complaints before it. What
/// the module keeps on purpose does not count.
std::vector<std::string> TakeViolations(machine::Simulation& simulation,
                                        const std::vector<machine::TraceEntry>& calls,
                                        std::size_t unexpectedBefore);

}  // namespace host::configure
