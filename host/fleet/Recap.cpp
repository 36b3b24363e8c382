#include "host/fleet/Recap.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "host/ExitCode.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace host::fleet {

namespace {

using configure::RestartNeed;
using Verdict = Row::Verdict;

// A longer name takes the room that it needs in its own row alone.
constexpr std::size_t kWidestName = 32;
constexpr std::string_view kWidestRestart = "not reported";

struct RowLook {
    char sign;
    Tone tone;
};

RowLook RowLookOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::kRight:
            return {'=', Tone::kGood};
        case Verdict::kChanges:
            return {'~', Tone::kChange};
        case Verdict::kFails:
            return {'!', Tone::kBad};
        case Verdict::kNotPlanned:
            break;
    }
    return {'?', Tone::kBad};
}

Verdict VerdictOf(const configure::Outcome& outcome, int exitCode) {
    return exitCode == kDone                                           ? Verdict::kRight
           : exitCode == kChangesPlanned && outcome.violations.empty() ? Verdict::kChanges
                                                                       : Verdict::kFails;
}

/// "2 errors, 1 warning"
std::string CountsOf(const check::Findings& findings) {
    const std::size_t errors = findings.Errors();
    const std::size_t warnings = findings.Warnings();
    return (errors == 0 ? "" : Counted(errors, "error")) +
           (errors == 0 || warnings == 0 ? "" : ", ") +
           (warnings == 0 ? "" : Counted(warnings, "warning"));
}

/// What the columns do not say, the worst first.
std::vector<std::string> RemarksOn(const configure::Result& result,
                                   const configure::Counts& counts) {
    const configure::Outcome& outcome = result.outcome;
    std::vector<std::string> remarks;
    if (outcome.Last().story.failure) {
        remarks.push_back(configure::FailurePhrase(outcome.Last(), "would fail"));
    } else if (configure::FailsAfterRestart(outcome)) {
        remarks.push_back(
            configure::FailurePhrase(*outcome.afterRestart, "fails after the restart"));
    }
    for (const std::string& violation : outcome.violations) {
        remarks.push_back("the module broke a rule of the simulated machine: " + violation);
    }
    for (const std::string& lockOut : result.lockOuts) {
        remarks.push_back("the agent may lose its connection: " + lockOut);
    }
    if (counts.waiting != 0) {
        remarks.push_back(Counted(counts.waiting, "change") + " after the restart");
    }
    if (counts.skipped != 0) {
        remarks.push_back(Counted(counts.skipped, "setting") + " skipped, though not as the file");
    }
    const check::Findings& findings = result.checked.findings;
    if (!findings.List().empty()) {
        remarks.push_back("check finds " + CountsOf(findings));
    }
    return remarks;
}

int Severity(int exitCode) {
    constexpr std::array kByWorst = {kFailure, kBadInput, kChangesPlanned};
    const auto* const found = std::ranges::find(kByWorst, exitCode);
    return static_cast<int>(kByWorst.end() - found);
}

}  // namespace

const char* RestartText(RestartNeed need) {
    switch (need) {
        case RestartNeed::kNeeded:
            return "needed";
        case RestartNeed::kNotReported:
            return "not reported";
        case RestartNeed::kPending:
            return "pending";
        case RestartNeed::kNone:
            break;
    }
    return "no";
}

void Recap::Add(const Planned& planned) {
    Row row{.name = planned.member.name,
            .file = planned.member.file,
            .machine = planned.member.machine,
            .exitCode = planned.exitCode,
            .counts = {},
            .remarks = {}};
    if (planned.result) {
        const configure::Outcome& outcome = planned.result->outcome;
        row.verdict = VerdictOf(outcome, planned.exitCode);
        row.counts = configure::CountRows(outcome.Last().rows);
        row.restart = configure::RestartNeedOf(outcome.Last());
        row.locksOut = !planned.result->lockOuts.empty();
        row.remarks = RemarksOn(*planned.result, row.counts);
    } else {
        row.remarks.push_back(planned.fault);
    }
    rows_.push_back(std::move(row));
}

int Recap::ExitCode() const {
    const auto severity = [](const Row& row) { return Severity(row.exitCode); };
    return std::ranges::max_element(rows_, {}, severity)->exitCode;
}

void Recap::Print(const std::string& folder, bool totalsOnly, Output& output) const {
    if (!totalsOnly) {
        output.Line("Plans for " + folder);
        output.Line("");
        PrintTable(output);
        output.Line("");
    }
    output.Line(Totals(), CountOf(Verdict::kFails) + CountOf(Verdict::kNotPlanned) != 0
                              ? Tone::kBad
                              : Tone::kHeading);
    const auto lockedOut = std::ranges::count_if(rows_, &Row::locksOut);
    if (lockedOut != 0) {
        output.Line("Warning: the agent may lose its connection on " +
                        Counted(static_cast<std::size_t>(lockedOut), "machine") + ".",
                    Tone::kBad);
    }
    output.Line(NextStep());
}

void Recap::PrintTable(Output& output) const {
    const std::string machine = "Machine";
    const std::string changes = "Changes";
    const std::string right = "Right";
    std::size_t nameWidth = machine.size();
    for (const Row& row : rows_) {
        nameWidth = std::max(nameWidth, std::min(ShownWidth(row.name), kWidestName));
    }
    output.Line("  " + Padded(machine, nameWidth) + "  " + changes + "  " + right + "  Restart",
                Tone::kHeading);
    for (const Row& row : rows_) {
        const bool isPlanned = row.verdict != Verdict::kNotPlanned;
        const auto number = [isPlanned](std::size_t count, const std::string& head) {
            return "  " + RightAligned(isPlanned ? std::to_string(count) : "-", head.size());
        };
        const std::string restart = isPlanned ? RestartText(row.restart) : "-";
        const RowLook look = RowLookOf(row.verdict);
        std::string line = std::string{look.sign, ' '} + Padded(row.name, nameWidth) +
                           number(row.counts.changes, changes) +
                           number(row.counts.alreadySet, right) + "  ";
        const std::size_t indent = ShownWidth(line) + kWidestRestart.size() + 2;
        line += restart;
        if (row.remarks.empty()) {
            output.Line(line, look.tone);
        }
        for (const std::string& remark : row.remarks) {
            output.Line(Padded(std::exchange(line, {}), indent) + remark, look.tone);
        }
    }
}

std::size_t Recap::CountOf(Verdict verdict) const {
    return static_cast<std::size_t>(std::ranges::count(rows_, verdict, &Row::verdict));
}

std::string Recap::Totals() const {
    std::size_t changes = 0;
    std::size_t restarts = 0;
    for (const Row& row : rows_) {
        changes += row.verdict == Verdict::kChanges ? row.counts.changes : 0;
        restarts += row.restart == RestartNeed::kNone ? 0 : 1;
    }
    std::string text = Counted(rows_.size(), "machine") + ": " +
                       std::to_string(CountOf(Verdict::kChanges)) + " to change (" +
                       Counted(changes, "change") + "), " +
                       std::to_string(CountOf(Verdict::kRight)) + " right already";
    if (const std::size_t count = CountOf(Verdict::kFails); count != 0) {
        text += ", " + std::to_string(count) + " would fail";
    }
    if (const std::size_t count = CountOf(Verdict::kNotPlanned); count != 0) {
        text += ", " + std::to_string(count) + " without a plan";
    }
    return text + ". " + (restarts == 0 ? "No restart." : Counted(restarts, "restart") + ".");
}

std::string Recap::NextStep() const {
    for (const Verdict verdict : {Verdict::kNotPlanned, Verdict::kFails, Verdict::kChanges}) {
        const auto row = std::ranges::find(rows_, verdict, &Row::verdict);
        if (row == rows_.end()) {
            continue;
        }
        return verdict == Verdict::kNotPlanned
                   ? "Next: mend what is without a plan, first " + row->name + "."
                   : "Next: look at one in full: " + ShellWord(ProgramName()) +
                         " configure --plan " + ShellWord(row->file) + " --machine " +
                         ShellWord(row->machine);
    }
    return "Next: nothing; every machine is as its file wants it.";
}

}  // namespace host::fleet
