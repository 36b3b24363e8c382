// What the simulated route program understands and does: pure text in, a change of the routes out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "machine/State.h"

namespace machine {

struct RouteChange {
    enum class Kind { None, Add, Delete };

    Kind kind = Kind::None;
    PersistedRoute route;  // Delete: the destination alone

    bool operator==(const RouteChange&) const = default;
};

struct RouteOutcome {
    int exitCode = 0;
    std::string output;
    RouteChange change;
};

// Runs "route" with these arguments (the program's name not among them) on a machine with these
// routes.
RouteOutcome RunRoute(const std::vector<std::string>& arguments,
                      const std::vector<PersistedRoute>& routes);

void ApplyChange(std::vector<PersistedRoute>& routes, const RouteChange& change);

// The lines in which parent and child tell each other: "add 10.0.0.0 255.0.0.0 10.1.1.1 5".
std::string FormatRoute(const PersistedRoute& route);
std::optional<PersistedRoute> ParseRoute(std::string_view line);
std::string FormatChange(const RouteChange& change);
RouteChange ParseChange(std::string_view line);

}  // namespace machine
