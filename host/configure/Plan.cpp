#include "host/configure/Plan.h"

#include <algorithm>
#include <cstdlib>

#include "common/util/Strings.h"
#include "host/configure/Announcement.h"
#include "host/configure/Reasons.h"
#include "host/configure/Values.h"

namespace host::configure {

namespace {

using Kind = Setting::Kind;

/// Which settings the run's steps belong to.
class Assignment {
public:
    Assignment(const std::vector<Setting>& settings, const Story& story)
        : settings_(settings), story_(story) {
        std::optional<std::size_t> nic;
        for (const Step& step : story.steps) {
            nic = step.nic ? step.nic : nic;
            settingOfStep_.push_back(Find(step, nic));
        }
    }

    /// The step that executes the setting's command; null when none did.
    const Step* StepOf(const Setting& setting) const {
        for (std::size_t i = 0; i < settingOfStep_.size(); ++i) {
            if (settingOfStep_[i] == &setting) {
                return &story_.steps[i];
            }
        }
        return setting.kind == Kind::kUnit ? JoinWithUnit() : nullptr;
    }

    /// The step that began the setting's adapter section; null when it was not reached.
    const Step* NicOf(const Setting& setting) const {
        for (const Step& step : story_.steps) {
            if (setting.adapter && step.command == "ConfigureNic" && step.nic == setting.adapter) {
                return &step;
            }
        }
        return nullptr;
    }

    /// The pause after an adapter's addresses; null for any other setting.
    const Step* PauseOf(const Setting& setting) const {
        const auto found = std::ranges::find_if(story_.steps, [&setting](const Step& step) {
            return step.command == "Sleep" && step.nic == setting.adapter;
        });
        return setting.kind == Kind::kAddresses && found != story_.steps.end() ? &*found : nullptr;
    }

    /// Whether the run came to the setting's place and went past it: what was not executed then
    /// needed nothing. Commands run in the order of the settings; only a join lets the rename that
    /// follows it go first.
    bool WasPassed(const Setting& setting) const {
        if (story_.completed) {
            return true;
        }
        const Step* const nic = NicOf(setting);
        if (nic != nullptr && !story_.failure && setting.kind != Kind::kRoutes) {
            return true;
        }
        const bool joins = setting.kind == Kind::kDomain || setting.kind == Kind::kUnit;
        return std::ranges::any_of(settingOfStep_, [&](const Setting* executed) {
            return executed != nullptr && executed->order > setting.order &&
                   !(joins && executed->kind == Kind::kComputerName);
        });
    }

private:
    const Setting* Find(const Step& step, std::optional<std::size_t> nic) const {
        const std::optional<Kind> kind = KindOf(step.command);
        const auto found = std::ranges::find_if(settings_, [&](const Setting& setting) {
            return setting.kind == kind && !setting.leftAlone &&
                   (!setting.adapter || setting.adapter == nic);
        });
        return found == settings_.end() ? nullptr : &*found;
    }

    /// A unit goes with the join where there is one.
    const Step* JoinWithUnit() const {
        for (const Step& step : story_.steps) {
            const bool carries = std::ranges::any_of(step.calls, [](const ChangingCall& call) {
                return call.parameters.find("AccountOU=\"OU=") != std::string::npos;
            });
            if (step.command == "JoinDomain" && carries) {
                return &step;
            }
        }
        return nullptr;
    }

    const std::vector<Setting>& settings_;
    const Story& story_;
    std::vector<const Setting*> settingOfStep_;
};

/// "Duration=8000 milliseconds"
std::string PauseText(const Step& pause) {
    const auto milliseconds =
        std::strtoul(pause.description.c_str() + pause.description.find('=') + 1, nullptr, 10);
    return util::Format("then waits %lu s for the adapter", milliseconds / 1000);
}

bool AsksForSomething(const Setting& setting) {
    switch (setting.kind) {
        case Kind::kAdapter:
        case Kind::kAccount:
        case Kind::kRestartAnswer:
        case Kind::kUnused:
            return false;
        case Kind::kDnsServers:
            return !setting.wanted.empty();  // every server was 0.0.0.0
        default:
            return true;
    }
}

/// The fate of a setting after the restart marker, or not: only the next pass can tell.
void TakeFromNextPass(const Story& story, const Row* next, Row& row) {
    if (next == nullptr) {
        row.fate = Fate::kWaits;
        row.reason = "after the restart, if anything is left to do";
        return;
    }
    if (!row.index && next->index) {
        row.index = next->index;
        row.adapter = next->adapter;
        row.current = next->current;
    }
    if (next->fate == Fate::kAlreadySet) {
        row.fate = Fate::kAlreadySet;
        row.reason = next->reason;
        return;
    }
    row.fate = story.fileKept ? Fate::kWaits : Fate::kNotAttempted;
    row.reason = !story.fileKept ? "the run stopped for a restart, and nobody sends the file again"
                 : next->fate == Fate::kFailed
                     ? "after the restart, and it would fail then: " + next->reason
                 : next->reason.empty() ? "after the restart"
                                        : "after the restart; " + next->reason;
}

/// What a list of routes has come to: another adapter's may have changed them again afterwards.
std::vector<std::string> RoutesAfter(const Step& step, const Story& story, const Run& run) {
    const auto next = std::find_if(
        story.steps.begin() + (&step - story.steps.data()) + 1, story.steps.end(),
        [](const Step& later) { return KindOf(later.command) == Kind::kRoutes && later.before; });
    return next == story.steps.end() ? AllRoutes(run.after) : *next->before;
}

Row MakeRow(const Setting& setting, const Run& run, const Story& story,
            const Assignment& assignment, const Row* next) {
    Row row;
    row.setting = setting;
    row.wanted = WantedValues(setting);
    const Step* const nic = assignment.NicOf(setting);
    row.index = nic == nullptr ? std::nullopt : nic->index;
    if (const machine::Adapter* const adapter = AdapterOf(run.before, row.index)) {
        row.adapter = AdapterLabel(*adapter);
    }
    if (setting.leftAlone) {
        row.fate = Fate::kLeftAlone;
        row.current = CurrentValues(run.before, setting.kind, row.index);
        row.reason = WhyLeftAlone(row, run.after);
        return row;
    }
    if (!AsksForSomething(setting)) {
        row.fate = setting.kind == Kind::kUnused || setting.kind == Kind::kDnsServers
                       ? Fate::kIgnored
                       : Fate::kLabel;
        row.reason = WhyNoWish(row, run, story, next);
        return row;
    }
    row.current = CurrentValues(run.before, setting.kind, row.index);
    if (const Step* const step = assignment.StepOf(setting)) {
        row.fate = step->failed ? Fate::kFailed : Fate::kChange;
        row.calls = step->calls;
        if (setting.kind == Kind::kRoutes) {
            row.defaultRoute = FirstDefaultRoute(run.before);
            row.left = RoutesAfter(*step, story, run);
        }
        row.reason = step->failed ? FailureText(*story.failure) : WhyExecuted(row, story, *step);
    } else if (assignment.WasPassed(setting)) {
        row.fate = Fate::kAlreadySet;
        row.reason = WhySkipped(row, run.before);
    } else if (story.stoppedForRestart) {
        TakeFromNextPass(story, next, row);
    } else {
        row.fate = Fate::kNotAttempted;
        row.reason = "the run ended before it";
    }
    // Also where the addresses are right already.
    if (const Step* const pause = assignment.PauseOf(setting)) {
        row.setting.notes.push_back(PauseText(*pause));
    }
    return row;
}

}  // namespace

const char* Identifier(Fate fate) {
    switch (fate) {
        case Fate::kChange:
            return "change";
        case Fate::kAlreadySet:
            return "already-set";
        case Fate::kFailed:
            return "failed";
        case Fate::kWaits:
            return "waits";
        case Fate::kNotAttempted:
            return "not-attempted";
        case Fate::kLabel:
            return "label";
        case Fate::kLeftAlone:
            return "left-alone";
        case Fate::kIgnored:
            break;
    }
    return "ignored";
}

std::vector<Row> MakeRows(const std::vector<Setting>& settings, const Run& run, const Story& story,
                          const std::vector<Row>* next) {
    const Assignment assignment(settings, story);
    std::vector<Row> rows;
    for (std::size_t i = 0; i < settings.size(); ++i) {
        rows.push_back(
            MakeRow(settings[i], run, story, assignment, next == nullptr ? nullptr : &(*next)[i]));
    }
    return rows;
}

bool IsSkipped(const Row& row) {
    return row.fate == Fate::kAlreadySet && row.current && row.reason != kAlreadySet &&
           row.reason != kFoundThere;
}

Counts CountRows(const std::vector<Row>& rows) {
    const auto count = [&rows](Fate fate) {
        return static_cast<std::size_t>(
            std::ranges::count_if(rows, [fate](const Row& row) { return row.fate == fate; }));
    };
    const auto skipped = static_cast<std::size_t>(std::ranges::count_if(rows, IsSkipped));
    return {count(Fate::kChange),
            count(Fate::kAlreadySet) - skipped,
            skipped,
            count(Fate::kFailed),
            count(Fate::kWaits),
            count(Fate::kNotAttempted),
            count(Fate::kLeftAlone),
            count(Fate::kIgnored)};
}

}  // namespace host::configure
