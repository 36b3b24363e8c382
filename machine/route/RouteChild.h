// The simulated route program as its parent sees it: handles, a pipe, an exit code. Nothing is
// started; the program's work is done inside this process.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "machine/State.h"

namespace machine {

/// A started route program. It has done its work at once and is over for its parent when that waits
/// for it, not before: a parent that does not wait gets no exit code.
class RouteChild {
public:
    /// Works on the routes and writes to `output` (null: nowhere). The code, if there is one, takes
    /// the place of all that. Throws std::system_error.
    RouteChild(State& state, std::string_view commandLine,
               std::optional<std::uint32_t> forcedExitCode, HANDLE output);

    /// What stands for the process. Whoever is given it closes it.
    HANDLE Process() const { return process_; }

    void End() { hasEnded_ = true; }
    /// Ends it before anybody has waited; false when it has ended.
    bool Terminate(std::uint32_t exitCode);
    /// STILL_ACTIVE before its end.
    std::uint32_t ExitCode() const { return hasEnded_ ? exitCode_ : STILL_ACTIVE; }

private:
    HANDLE process_;
    std::uint32_t exitCode_ = 0;
    bool hasEnded_ = false;
};

/// The program that a command line starts with, quotes taken off.
std::string_view ProgramOf(std::string_view commandLine);

}  // namespace machine
