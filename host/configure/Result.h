// What a file comes to on a machine, before any view shows it.
#pragma once

#include <string>
#include <vector>

#include "host/check/FileCheck.h"
#include "host/configure/Passes.h"
#include "machine/State.h"

namespace host::configure {

struct Result {
    check::CheckedFile checked;  ///< on a simulated machine with what that makes of the file
    Outcome outcome;
    /// Who may be cut off: a line for each adapter with a default route that changes its address.
    std::vector<std::string> lockOuts;
};

/// Checks the file and runs it on a copy of the machine. Throws HostError.
Result CheckAndRun(const Request& request, const machine::State& machine);

/// The same on this machine.
Result CheckAndRunHere(const Request& request);

/// The program's exit code for what became of the request.
int ExitCodeOf(const Outcome& outcome, const Request& request);

}  // namespace host::configure
