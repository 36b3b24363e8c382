#include "host/configure/Closing.h"

#include "host/Terminal.h"
#include "host/Text.h"
#include "host/configure/RowText.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Texts = std::vector<std::string>;

std::string Joined(const Texts& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined;
}

std::string RestartText(const Pass& pass) {
    switch (RestartNeedOf(pass)) {
        case RestartNeed::kNeeded:
            return "Restart needed.";
        case RestartNeed::kNotReported:
            return "Restart needed but not reported.";
        case RestartNeed::kPending:
            return "A restart is pending; none is asked for.";
        case RestartNeed::kNone:
            break;
    }
    return "No restart.";
}

/// The setting that failed with its place, or else what did.
std::string FailedSubject(const Pass& pass) {
    for (const Row& row : pass.rows) {
        if (row.fate == Fate::kFailed) {
            return std::string(Label(row.setting.kind)) + " (" + PlaceText(row) + ")";
        }
    }
    return WhatFailed(pass);
}

}  // namespace

RestartNeed RestartNeedOf(const Pass& pass) {
    return pass.story.fileKept                      ? RestartNeed::kNeeded
           : pass.story.stoppedForRestart           ? RestartNeed::kNotReported
           : RestartEffects(pass.run.after).empty() ? RestartNeed::kNone
                                                    : RestartNeed::kPending;
}

std::string ConfigureCommandLine(const ReportOptions& options, const char* more = "") {
    return ShellWord(ProgramName()) + " configure " + options.fileWord + options.machineOptions +
           (options.untilDone ? " --until-done" : more);
}

bool FailsAfterRestart(const Outcome& outcome) {
    return outcome.afterRestart && outcome.afterRestart->story.failure;
}

std::string FailurePhrase(const Pass& pass, const char* verb) {
    return std::string(verb) + ": " + FailedSubject(pass) + ": " + FailureText(*pass.story.failure);
}

std::string SummaryText(const Outcome& outcome, const Pass& pass, const ReportOptions& options) {
    std::string text =
        std::string(options.plan ? "Plan: " : "Run: ") + CountsText(CountRows(pass.rows)) + ".";
    if (pass.story.failure) {
        return text + " " + FailurePhrase(pass, options.plan ? "Would fail" : "Failed") + ".";
    }
    text += " " + RestartText(pass);
    if (&pass == &outcome.Last() && FailsAfterRestart(outcome)) {
        text += " " + FailurePhrase(*outcome.afterRestart, "Fails after the restart") + ".";
    }
    return text;
}

Texts RestartEffects(const machine::State& machine) {
    Texts effects;
    if (machine.pendingComputerName) {
        effects.push_back("computer name " + *machine.pendingComputerName);
    }
    if (machine.pendingMembership) {
        effects.push_back(MembershipText(*machine.pendingMembership));
    }
    return effects;
}

Texts RestartLines(const Outcome& outcome) {
    const Story& story = outcome.Last().story;
    const Texts effects = RestartEffects(outcome.machine);
    Texts lines;
    if (!effects.empty()) {
        lines.push_back("With the restart: " + Joined(effects) + ".");
    }
    if (!story.stoppedForRestart) {
        return lines;
    }
    if (!story.fileKept) {
        lines.emplace_back(
            "RebootAfterConfig is false: the module puts the file away, and nobody sends it "
            "again.");
        return lines;
    }
    if (!outcome.afterRestart) {
        lines.emplace_back("The file stays and has to be sent again after the restart.");
        return lines;
    }
    const Pass& after = *outcome.afterRestart;
    const Counts counts = CountRows(after.rows);
    if (after.story.failure) {
        return lines;  // the summary says it
    }
    lines.push_back("The file stays and is sent again: " +
                    (counts.changes == 0
                         ? std::string("nothing is left to do")
                         : CountsText({.changes = counts.changes}) + " then, marked \">\"") +
                    (after.story.fileKept ? ", and another restart." : "."));
    return lines;
}

std::string WhatFailed(const Pass& pass) {
    const Failure& failure = *pass.story.failure;
    if (failure.step) {
        const Step& step = pass.story.steps[*failure.step];
        const std::string adapter =
            step.index ? " (adapter index " + std::to_string(*step.index) + ")" : "";
        return step.command + adapter;
    }
    if (failure.afterLastStep) {
        return "reading a current setting after " + pass.story.steps.back().command;
    }
    switch (failure.stage) {
        case Stage::kReading:
            return "reading the configuration; nothing was executed";
        case Stage::kAnalysing:
            return "looking at the machine; nothing was executed";
        case Stage::kRunning:
            return "the run";
        case Stage::kPuttingAway:
            break;
    }
    return "putting the file away; every command before it was executed";
}

std::string CheckCommandLine(const ReportOptions& options) {
    return ShellWord(ProgramName()) + " check " + options.fileWord +
           (options.onThisMachine ? std::string() : options.machineOptions);
}

std::string NextStep(const Outcome& outcome, const ReportOptions& options) {
    const Story& story = outcome.Last().story;
    const std::size_t findings = options.checked.findings.List().size();
    if (findings != 0 && (story.failure || options.plan)) {
        return "Next: look at the " +
               (findings == 1 ? std::string("finding") : std::to_string(findings) + " findings") +
               " of check (" + CheckCommandLine(options) + ").";
    }
    if (story.failure || FailsAfterRestart(outcome)) {
        return options.plan ? "Next: fix the cause and plan again."
                            : "Next: fix the cause and send the file again.";
    }
    if (options.plan) {
        if (!ChangesSomething(outcome)) {
            return "Next: nothing; the machine already matches the file.";
        }
        return "Next: make the changes (" +
               ConfigureCommandLine(options, options.onThisMachine ? " --yes" : "") + ").";
    }
    if (story.fileKept) {
        return options.onThisMachine
                   ? "Next: restart the machine and send the file again."
                   : "Next: restart the machine and send the file again, or let it be done (" +
                         ConfigureCommandLine(options, " --until-done") + ").";
    }
    return story.stoppedForRestart ? "Next: restart the machine and send the file again yourself."
                                   : "Next: nothing; the run is complete.";
}

}  // namespace host::configure
