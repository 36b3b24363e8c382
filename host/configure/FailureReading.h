#pragma once

#include <vector>

#include "host/configure/Steps.h"

namespace host::configure {

/// "Status-Module" of a run that stopped at a restart marker although the file says that a restart
/// is not to be reported.
constexpr const char* kMarkerModule = "Tovrune";

/// What stopped a run that did not end well. Marks the step that failed.
Failure ReadFailure(const Run& run, std::vector<Step>& steps);

}  // namespace host::configure
