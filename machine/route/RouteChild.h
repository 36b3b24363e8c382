// The simulated route program as its parent sees it: handles, a pipe, an exit code. Nothing is
// started; the program's work is done inside this process.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "machine/State.h"

namespace machine {

// A started route program. It works when somebody waits for it and not before, so that a parent
// that does not wait finds the routes as they were.
class RouteChild {
public:
    // The code replaces the program's work, if there is one. The child writes to `output` (null:
    // nowhere) and keeps a handle of its own for that, as an inherited one is. Throws
    // std::system_error.
    RouteChild(std::string commandLine, std::optional<std::uint32_t> forcedExitCode, HANDLE output);
    ~RouteChild();
    RouteChild(RouteChild&& other) noexcept;
    RouteChild& operator=(RouteChild&& other) noexcept;

    // What stands for the process: signalled at its end. Whoever is given it closes it.
    HANDLE Process() const { return process_; }

    // Lets it do its work on the routes and end. Nothing when it has ended.
    void Run(State& state);
    // Ends it before that; false when it has ended.
    bool Terminate(std::uint32_t exitCode);
    // STILL_ACTIVE before its end.
    std::uint32_t ExitCode() const { return exitCode_; }

private:
    bool HasEnded() const { return exitCode_ != STILL_ACTIVE; }
    void End(std::uint32_t exitCode);

    std::string commandLine_;
    std::optional<std::uint32_t> forcedExitCode_;
    HANDLE process_ = nullptr;
    HANDLE output_ = nullptr;
    std::uint32_t exitCode_ = STILL_ACTIVE;
};

// The program that a command line starts with, quotes taken off.
std::string_view ProgramOf(std::string_view commandLine);

}  // namespace machine
