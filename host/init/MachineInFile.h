#pragma once

#include <string>

#include "machine/State.h"

namespace host::init {

/// The configuration file that describes the machine as it is. The module has found nothing to do
/// for it there. `name` is how people call the machine. Throws HostError where there is no such
/// file, because the module fails on the machine whatever it is told.
std::string DescribeInFile(const std::string& module, const machine::State& machine,
                           const std::string& name);

}  // namespace host::init
