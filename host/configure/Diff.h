#pragma once

#include <string>
#include <vector>

#include "machine/State.h"

namespace host::configure {

/// Something that differs between two states of a machine. A list that lost or gained members has
/// one change for each of them, with one side empty. Texts are in the system code page.
struct Change {
    std::string where;  ///< "machine", an adapter's label, "routes", "domain corp.example", ...
    std::string what;   ///< "DNS servers"; empty where the place says it
    std::string before;
    std::string after;
};

/// Everything that differs, the machine first, then adapter by adapter, then the rest. Passwords
/// are compared and never shown.
std::vector<Change> Compare(const machine::State& before, const machine::State& after);

/// Without what only said that something was to come: what a restart makes effective.
std::vector<Change> Effective(std::vector<Change> changes);

}  // namespace host::configure
