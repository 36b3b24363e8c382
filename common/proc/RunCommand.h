#pragma once

#include <cstdint>
#include <string>

namespace proc {

/// Runs a command line, found the way the system finds programs, without capturing its output, and
/// waits for it without limit. Returns its exit code, the Windows error code when it cannot be
/// started, -1 when the wait fails. Throws ChildProcessError when its pipes cannot be made.
///
/// Nobody reads what it writes: a program that writes more than a pipe holds (4 KB by default)
/// waits for ever, and so does this function.
///
/// `commandLine` is a printf-style format without arguments: it must not hold "%".
std::int32_t RunCommand(const std::string& commandLine);

}  // namespace proc
