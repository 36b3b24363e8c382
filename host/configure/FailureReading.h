#pragma once

#include <vector>

#include "host/configure/Steps.h"

namespace host::configure {

/// What stopped a run that did not end well. Marks the step that failed.
Failure ReadFailure(const Run& run, std::vector<Step>& steps);

}  // namespace host::configure
