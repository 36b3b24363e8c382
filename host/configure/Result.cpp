#include "host/configure/Result.h"

#include "host/ExitCode.h"
#include "host/check/MachineCheck.h"
#include "host/undo/Undo.h"

namespace host::configure {

namespace {

std::vector<std::string> LockOutsOf(const Outcome& outcome) {
    return undo::ListLockOuts(outcome.passes.front().run.before, outcome.machine);
}

}  // namespace

Result CheckAndRun(const Request& request, const machine::State& machine) {
    Result result{check::CheckFile(request.file), {}, {}};
    check::CheckOnMachine(result.checked.file, machine, result.checked.findings);
    result.outcome = RunPasses(request, machine);
    result.lockOuts = LockOutsOf(result.outcome);
    return result;
}

Result CheckAndRunHere(const Request& request) {
    // Checked before the run, which may take the file away.
    Result result{check::CheckFile(request.file), {}, {}};
    result.outcome = RunHere(request);
    result.lockOuts = LockOutsOf(result.outcome);
    return result;
}

int ExitCodeOf(const Outcome& outcome, const Request& request) {
    const Story& story = outcome.Last().story;
    if (!outcome.violations.empty()) {
        return kFailure;
    }
    if (story.failure) {
        return story.failure->configurationRefused ? kBadInput : kFailure;
    }
    const bool unsettled = outcome.furtherRun && !outcome.Settled();
    if (unsettled || (request.untilDone && story.fileKept)) {
        return kFailure;
    }
    if (request.plan) {
        if (outcome.afterRestart && outcome.afterRestart->story.failure) {
            return kFailure;
        }
        return ChangesSomething(outcome) ? kChangesPlanned : kDone;
    }
    // A restart that the file keeps quiet about makes the module answer "Failure".
    return story.fileKept ? kRestartNeeded : story.stoppedForRestart ? kFailure : kDone;
}

}  // namespace host::configure
