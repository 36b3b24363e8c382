// One "Configure" message to the module, with everything that can be seen of it from outside.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/LogSink.h"
#include "host/Message.h"
#include "machine/Simulation.h"
#include "machine/State.h"

namespace host::configure {

/// A line of the module's log and where the run stood when it came.
struct Mark {
    LogLine line;
    std::size_t calls = 0;  ///< platform calls before it; 0 on a real machine
    /// What the setting of an announced command is at that moment; none on a real machine.
    std::optional<std::vector<std::string>> present;
};

struct Run {
    std::vector<Mark> log;
    std::vector<Field> reply;
    std::int32_t result = 0;                 ///< what the module's handler returned
    std::string moduleError;                 ///< what escaped from the module, if anything did
    std::vector<machine::TraceEntry> calls;  ///< the platform calls; empty on a real machine
    machine::State before;
    machine::State after;
    std::vector<std::string> violations;  ///< what the simulated machine holds against the module

    /// The text of a reply field; empty where there is none.
    std::string Reply(const std::string& name) const;
};

/// Told what the module is doing.
using Watcher = std::function<void(const std::string&)>;

/// Loads the module, lets it work on the simulated machine and unloads it, as a restart of the
/// agent would. The module gets a copy of the file in a private folder and puts that away there;
/// log lines name the file as people do. `routes` is how many are to be changed.
Run RunOnSimulation(const std::string& module, machine::Simulation& simulation,
                    const std::string& file, const std::string& name, std::size_t routes,
                    const Watcher& watcher);

/// Lets the module work on this machine and on the file itself, which it puts away beside this
/// program. `before` and `after` are what the module's own queries see; empty texts where they see
/// nothing.
Run RunOnThisMachine(const std::string& module, const std::string& file, const Watcher& watcher);

}  // namespace host::configure
