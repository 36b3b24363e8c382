#pragma once

#include <string>

#include "host/init/Description.h"

namespace host::init {

/// The configuration file that says it, with every key, commented. What it cannot say stands there
/// as a comment. `heading` begins it.
std::string Render(const Description& description, const Texts& heading);

}  // namespace host::init
