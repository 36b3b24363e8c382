#pragma once

#include <string>
#include <vector>

#include "machine/Simulation.h"

namespace host::configure {

/// What the module did to the simulated machine that no program may do: things not given back,
/// given back twice, calls that the machine cannot answer. The ledger is cleared, for the module is
/// done. `calls` are those of the run, `unexpectedBefore` the number of complaints before it.
///
/// Three things the module does on purpose, and they do not count: the child's ends of the pipes of
/// a program that was waited for and the LSA policy handle without workstation information stay
/// open, and COM is left also by a connection that could not enter it.
std::vector<std::string> TakeViolations(machine::Simulation& simulation,
                                        const std::vector<machine::TraceEntry>& calls,
                                        std::size_t unexpectedBefore);

}  // namespace host::configure
