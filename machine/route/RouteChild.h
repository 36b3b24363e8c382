// The parent's side of a simulated route program: what the child is told and what it reports back.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "machine/State.h"

namespace machine {

// A started route program whose effect is still to be taken over. Parent and child share a named
// piece of memory, so nothing is left on disk whatever happens to either.
class RouteChild {
public:
    // The state's routes, and the exit code that the child is to give instead of working, if any.
    RouteChild(const State& state, std::optional<std::uint32_t> forcedExitCode);
    ~RouteChild();
    RouteChild(RouteChild&& other) noexcept;
    RouteChild& operator=(RouteChild&& other) noexcept;

    // The environment block that leads the child to its orders: the given block, or the process's
    // own environment for null, and the variable beside it.
    std::string Environment(const char* given) const;
    // Remembers the started process; the handle stays the caller's.
    void Started(HANDLE process);

    // Whether the process has ended.
    bool Ended() const;
    // Waits for its end, for ten seconds at most.
    void WaitForEnd() const;
    // What the ended process did to the routes.
    void Apply(State& state) const;

private:
    void Close() noexcept;

    std::string name_;
    HANDLE mapping_ = nullptr;
    char* view_ = nullptr;
    HANDLE process_ = nullptr;
};

}  // namespace machine
