#include "host/configure/Report.h"

#include "host/configure/Codes.h"
#include "host/configure/RestartStory.h"
#include "host/configure/RowText.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

std::string Joined(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined.empty() ? "nothing" : joined;
}

void PrintChanges(const std::vector<Change>& changes, const char* heading, Output& output) {
    if (changes.empty()) {
        return;
    }
    output.Line(heading, Tone::kHeading);
    std::string where;
    for (const Change& change : changes) {
        if (change.where != where) {
            where = change.where;
            output.Line("  " + where);
        }
        const std::string what = change.what.empty() ? "" : change.what + ": ";
        if (change.before.empty()) {
            output.Line("    + " + what + change.after, Tone::kChange);
        } else if (change.after.empty()) {
            output.Line("    - " + what + change.before, Tone::kChange);
        } else {
            output.Line("    ~ " + what + change.before + " -> " + change.after, Tone::kChange);
        }
    }
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
        return "reading a present setting after " + pass.story.steps.back().command;
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

/// What was done, what failed, what was not attempted: all three, always.
void PrintFailure(const Pass& pass, const std::string& file, Output& output) {
    const Failure& failure = *pass.story.failure;
    output.Line("Failed: " + WhatFailed(pass), Tone::kBad);
    if (!failure.call.empty()) {
        output.Line("  call: " + failure.call);
    }
    if (const machine::Adapter* const adapter = AdapterOf(pass.run.before, failure.adapter)) {
        output.Line("  adapter: " + AdapterLabel(*adapter));
    }
    output.Line("  code: " + CodeText(failure.code) + ", " + failure.text);
    if (failure.status && *failure.status != failure.code) {
        output.Line("  status code of the reply: " + CodeText(*failure.status));
    }
    std::vector<std::string> done;
    std::vector<std::string> left;
    for (const Row& row : pass.rows) {
        const std::string name =
            std::string(Label(row.setting.kind)) + " (" + PlaceText(row, file) + ")";
        if (row.fate == Fate::kChange) {
            done.push_back(name);
        } else if (row.fate == Fate::kNotAttempted) {
            left.push_back(name);
        }
    }
    output.Line("  done: " + Joined(done));
    output.Line("  not attempted: " + Joined(left));
}

std::string ReplyText(const Pass& pass) {
    std::string text;
    for (const Field& field : pass.run.reply) {
        text += (text.empty() ? "" : ", ") + field.name + "=" + field.Text();
    }
    return text.empty() ? "none" : text;
}

void PrintPass(const Pass& pass, const std::string& summary, const ReportOptions& options,
               Output& output) {
    for (const Row& row : pass.rows) {
        PrintRow(row, options.file, output);
    }
    output.Line(std::string(options.plan ? "Plan: " : "Run: ") + CountsText(CountRows(pass.rows)) +
                    ". " + summary,
                Tone::kHeading);
    if (pass.story.failure) {
        PrintFailure(pass, options.file, output);
    }
    if (pass.changes.empty()) {
        output.Line("Machine: nothing changed.");
    }
    PrintChanges(pass.changes, "Machine, before and after:", output);
}

void PrintEnd(const Outcome& outcome, Output& output) {
    if (outcome.furtherRun) {
        if (outcome.Settled()) {
            output.Line("Settled: a restart and a further run change nothing more.", Tone::kGood);
            return;
        }
        output.Line("Never settles: a further run would not leave the machine as it is.",
                    Tone::kBad);
        if (const auto& failure = outcome.furtherRun->story.failure) {
            output.Line("  it would fail: " + WhatFailed(*outcome.furtherRun) + ": " +
                        failure->text);
        }
        for (const Row& row : outcome.furtherRun->rows) {
            if (row.fate == Fate::kChange || row.fate == Fate::kFailed) {
                output.Line("  again: " + std::string(Label(row.setting.kind)) + ", " +
                            StepText(row));
            }
        }
        return;
    }
    if (outcome.passes.size() == kMostPasses && outcome.Last().story.fileKept) {
        output.Line("Does not settle: after " + std::to_string(kMostPasses) +
                        " passes the module still asks for a restart.",
                    Tone::kBad);
    }
}

}  // namespace

void PrintReport(const Outcome& outcome, const ReportOptions& options, Output& output) {
    output.Line((options.plan ? "Plan for " : "Running ") + options.file + " on " +
                options.machine);
    for (std::size_t i = 0; i < outcome.passes.size(); ++i) {
        const Pass& pass = outcome.passes[i];
        const bool last = i + 1 == outcome.passes.size();
        if (options.untilDone) {
            output.Line("");
            output.Line("Pass " + std::to_string(i + 1), Tone::kHeading);
        }
        PrintChanges(pass.restart, "The restart has made effective:", output);
        PrintPass(pass, RestartSummary(pass), options, output);
        if (last) {
            for (const std::string& line : RestartStory(outcome, options.file)) {
                output.Line(line);
            }
        }
        output.Line("Reply: " + ReplyText(pass), pass.story.failure ? Tone::kBad : Tone::kHeading);
    }
    if (options.untilDone) {
        PrintEnd(outcome, output);
    }
}

}  // namespace host::configure
