#include "host/configure/Passes.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/Files.h"
#include "host/configure/Values.h"
#include "machine/Simulation.h"

namespace host::configure {

namespace {

Pass MakePass(Run run) {
    Pass pass;
    pass.run = std::move(run);
    pass.story = ReadStory(pass.run);
    pass.changes = Compare(pass.run.before, pass.run.after);
    return pass;
}

/// A run on the machine as it is after one more restart.
Pass RunAfterRestart(const Request& request, Outcome& outcome) {
    machine::State restarted = outcome.machine;
    machine::ApplyRestart(restarted);
    const std::vector<Change> restart = Compare(outcome.machine, restarted);
    machine::Simulation simulation(std::move(restarted));
    simulation.SetFaultPlan(outcome.faults);
    Pass pass = MakePass(RunOnSimulation(
        request.module, simulation, request.file, request.name, request.routes,
        [&](const auto&) { request.watcher("looking at what comes after the restart"); }));
    pass.restart = restart;
    outcome.faults = simulation.GetFaultPlan();
    return pass;
}

void RunUntilDone(const Request& request, machine::Simulation& simulation, Outcome& outcome) {
    const std::size_t most = request.untilDone ? kMostPasses : 1;
    std::vector<Change> restart;
    while (true) {
        const std::string number =
            request.untilDone ? "pass " + std::to_string(outcome.passes.size() + 1) + ": " : "";
        Pass pass = MakePass(
            RunOnSimulation(request.module, simulation, request.file, request.name, request.routes,
                            [&](const auto& line) { request.watcher(number + line); }));
        pass.restart = std::move(restart);
        outcome.passes.push_back(std::move(pass));
        if (!outcome.Last().story.fileKept || outcome.passes.size() == most) {
            return;
        }
        simulation.Restart();
        restart = Compare(outcome.Last().run.after, simulation.GetState());
    }
}

std::size_t RoutesToChange(const std::vector<Setting>& settings, const machine::State& machine) {
    std::vector<std::string> current = *CurrentValues(machine, Setting::Kind::kRoutes, {});
    std::ranges::sort(current);
    std::size_t count = 0;
    for (const Setting& setting : settings) {
        if (setting.kind == Setting::Kind::kRoutes && !setting.leftAlone) {
            std::vector<std::string> wanted = WantedValues(setting);
            std::ranges::sort(wanted);
            std::vector<std::string> changed;
            std::ranges::set_symmetric_difference(current, wanted, std::back_inserter(changed));
            count += changed.size();
        }
    }
    return count;
}

/// Later passes tell what became of the settings that an earlier one did not come to.
void FillRows(const std::vector<Setting>& settings, Outcome& outcome) {
    const std::vector<Row>* next = nullptr;
    if (auto& pass = outcome.furtherRun) {
        pass->rows = MakeRows(settings, pass->run, pass->story, nullptr);
    }
    if (auto& pass = outcome.afterRestart) {
        pass->rows = MakeRows(settings, pass->run, pass->story, nullptr);
        next = &pass->rows;
    }
    // NOLINTNEXTLINE(modernize-loop-convert): this clang stumbles over reversed views.
    for (auto pass = outcome.passes.rbegin(); pass != outcome.passes.rend(); ++pass) {
        pass->rows = MakeRows(settings, pass->run, pass->story, next);
        next = &pass->rows;
    }
}

void CollectViolations(Outcome& outcome) {
    const auto collect = [&outcome](const Pass& pass) {
        outcome.violations.insert(outcome.violations.end(), pass.run.violations.begin(),
                                  pass.run.violations.end());
    };
    for (const Pass& pass : outcome.passes) {
        collect(pass);
    }
    for (const std::optional<Pass>* const pass : {&outcome.afterRestart, &outcome.furtherRun}) {
        if (*pass) {
            collect(**pass);
        }
    }
}

}  // namespace

bool Outcome::Settled() const {
    return furtherRun && furtherRun->story.completed && furtherRun->changes.empty() &&
           CountRows(furtherRun->rows).changes == 0;
}

bool ChangesSomething(const Outcome& outcome) {
    return std::ranges::any_of(outcome.passes, [](const Pass& pass) {
        return !pass.changes.empty() || CountRows(pass.rows).changes != 0;
    });
}

Outcome RunPasses(Request request, const machine::State& machine) {
    // Read first: a run on this machine would take the file away.
    const std::vector<Setting> settings = reading::SettingsOf(reading::File::Read(request.file));
    request.routes = RoutesToChange(settings, machine);
    Outcome outcome;
    {
        machine::Simulation simulation(machine);
        simulation.SetFaultPlan(request.faults);
        RunUntilDone(request, simulation, outcome);
        outcome.machine = simulation.GetState();
        outcome.trace = simulation.GetTrace();
        outcome.faults = simulation.GetFaultPlan();
    }
    if (outcome.Last().story.stoppedForRestart) {
        outcome.afterRestart = RunAfterRestart(request, outcome);
    } else if (request.untilDone && outcome.Last().story.completed) {
        outcome.furtherRun = RunAfterRestart(request, outcome);
    }
    FillRows(settings, outcome);
    CollectViolations(outcome);
    return outcome;
}

Outcome RunHere(const Request& request) {
    static_cast<void>(ReadWholeFile(request.file));  // the module would only answer 0
    const std::vector<Setting> settings = reading::SettingsOf(reading::File::Read(request.file));
    Outcome outcome;
    outcome.passes.push_back(
        MakePass(RunOnThisMachine(request.module, request.file, request.watcher)));
    outcome.machine = outcome.Last().run.after;
    FillRows(settings, outcome);
    return outcome;
}

}  // namespace host::configure
