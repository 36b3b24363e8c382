#include "host/configure/RestartStory.h"

#include "host/configure/RowText.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Texts = std::vector<std::string>;

/// The settings of a pass that would do something.
Texts WorkOf(const std::vector<Row>& rows, const std::string& file) {
    Texts lines;
    for (const Row& row : rows) {
        if (row.fate != Fate::kChange && row.fate != Fate::kFailed) {
            continue;
        }
        const std::string calls = CallsText(row);
        lines.push_back("  " + PlaceText(row, file) + "  " + Label(row.setting.kind) + ": " +
                        StepText(row) + (calls.empty() ? "" : "     " + calls) +
                        (row.fate == Fate::kFailed ? " (this would fail)" : ""));
    }
    return lines;
}

}  // namespace

std::string RestartSummary(const Pass& pass) {
    if (pass.story.fileKept) {
        return "Restart: yes.";
    }
    if (pass.story.stoppedForRestart) {
        return "Restart: needed, and not reported.";
    }
    return RestartEffects(pass.run.after).empty() ? "Restart: no." : "Restart: none is asked for.";
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

Texts RestartStory(const Outcome& outcome, const std::string& file) {
    const Story& story = outcome.Last().story;
    const Texts effects = RestartEffects(outcome.machine);
    Texts lines;
    if (!story.stoppedForRestart && effects.empty()) {
        return lines;
    }
    lines.push_back("Restart:");
    for (const std::string& effect : effects) {
        lines.push_back("  takes effect with it: " + effect);
    }
    if (!story.stoppedForRestart) {
        return lines;
    }
    if (!story.fileKept) {
        lines.push_back(
            "  RebootAfterConfig is false: the file is put away, and nobody sends it again");
    } else if (outcome.afterRestart) {
        const Texts work = WorkOf(outcome.afterRestart->rows, file);
        lines.push_back(work.empty() ? "  the file stays and is sent again: nothing is left to do"
                                     : "  the file stays and is sent again; then:");
        for (const std::string& line : work) {
            lines.push_back("  " + line);
        }
        if (outcome.afterRestart->story.fileKept) {
            lines.push_back("  and the module asks for one more restart");
        }
    } else {
        lines.push_back("  the file stays and is to be sent again after it");
    }
    return lines;
}

}  // namespace host::configure
