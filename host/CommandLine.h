#pragma once

#include "host/TextStream.h"

namespace host {

/// Parses the arguments (the program's name first, in the system code page), does what they ask and
/// returns the exit code. Data goes to `data`, everything else to `notes`.
int Run(int argc, const char* const* argv, TextStream& data, TextStream& notes);

}  // namespace host
