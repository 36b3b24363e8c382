// The runs that one call of the program makes: one, or one after each restart until the module is
// done, and those on clones that tell what comes after.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/configure/Diff.h"
#include "host/configure/Plan.h"
#include "host/configure/RunOnce.h"
#include "host/configure/Steps.h"
#include "host/reading/Settings.h"
#include "machine/FaultPlan.h"
#include "machine/State.h"
#include "machine/Trace.h"

namespace host::configure {

constexpr std::size_t kMostPasses = 5;

struct Pass {
    Run run;
    Story story;
    std::vector<Row> rows;
    std::vector<Change> changes;  ///< between before and after the run
    std::vector<Change> restart;  ///< what the restart before this pass made effective
};

struct Outcome {
    std::vector<Pass> passes;
    /// What a run after one more restart would do: there when the last pass stopped for one, on a
    /// simulated machine.
    std::optional<Pass> afterRestart;
    /// When the last pass succeeded and the question was asked: whether a restart and a further run
    /// change nothing more. That run's pass is kept.
    std::optional<Pass> furtherRun;
    machine::State machine;     ///< as the last pass left it
    machine::Trace trace;       ///< of all passes; of the clones nothing
    machine::FaultPlan faults;  ///< as the last run left them, clones included
    std::vector<std::string> violations;

    const Pass& Last() const { return passes.back(); }
    /// Whether the further run was made and did nothing.
    bool Settled() const;
};

/// Whether the passes have changed anything, or would.
bool ChangesSomething(const Outcome& outcome);

struct Request {
    std::string module;
    std::string file;
    std::string name;  ///< of the file, for people
    bool untilDone = false;
    machine::FaultPlan faults;
    Watcher watcher;
    std::size_t routes = 0;  ///< that are to be changed, for who watches
    bool plan = false;       ///< who asks wants to know only what would happen
};

/// Runs on the machine, of which a copy is changed. Throws HostError.
Outcome RunPasses(Request request, const machine::State& machine);

/// Runs once on this machine.
Outcome RunHere(const Request& request);

}  // namespace host::configure
