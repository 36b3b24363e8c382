#pragma once

#include "host/check/Finding.h"
#include "host/reading/File.h"
#include "machine/State.h"

namespace host::check {

/// Warns of what a machine makes of the file that the file alone does not tell: what its adapters,
/// its default routes and its policy lead the module into, and where versions of Windows differ.
/// Every finding has a remedy.
void CheckOnMachine(const reading::File& file, const machine::State& machine, Findings& findings);

}  // namespace host::check
