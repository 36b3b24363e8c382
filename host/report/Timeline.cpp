#include "host/report/Timeline.h"

#include <string>
#include <vector>

#include "host/configure/Closing.h"
#include "host/configure/RowText.h"

namespace host::report {

namespace {

using configure::Outcome;
using configure::Pass;
using Lines = std::vector<std::string>;

/// "machine: computer name: PC6 -> PC7"
std::string ChangeText(const configure::Change& change) {
    std::string text = change.where + ": " + (change.what.empty() ? "" : change.what + ": ");
    return text + (change.before.empty()  ? change.after + " comes"
                   : change.after.empty() ? change.before + " goes"
                                          : change.before + " -> " + change.after);
}

void WriteStop(Html& html, const std::string& kind, const std::string& title, const Lines& lines) {
    const auto item = html.Open("li", {{"class", kind}});
    html.Leaf("strong", title);
    for (const std::string& line : lines) {
        html.Leaf("p", line);
    }
}

void WritePastRestart(Html& html, const Pass& pass) {
    Lines lines;
    for (const configure::Change& change : configure::Effective(pass.restart)) {
        lines.push_back(ChangeText(change));
    }
    WriteStop(html, "restart", "Restart", lines);
}

std::string ForeseenText(const Pass& pass) {
    const std::string counts = configure::CountsText(configure::CountRows(pass.rows)) + ".";
    return pass.story.failure ? counts + " Would fail: " + configure::WhatFailed(pass) + ": " +
                                    configure::FailureText(*pass.story.failure) + "."
                              : counts;
}

}  // namespace

void WriteTimeline(Html& html, const Outcome& outcome, const configure::ReportOptions& options) {
    const auto list = html.Open("ol", {{"class", "timeline"}});
    std::size_t number = 0;
    for (const Pass& pass : outcome.passes) {
        if (number != 0) {
            WritePastRestart(html, pass);
        }
        WriteStop(html, pass.story.failure ? "run bad" : "run", "Run " + std::to_string(++number),
                  {configure::SummaryText(outcome, pass, options)});
    }
    const Lines restart = configure::RestartLines(outcome);
    if (outcome.Last().story.stoppedForRestart) {
        WriteStop(html, "restart to-come", "Restart, to come", restart);
    } else if (!restart.empty()) {
        WriteStop(html, "restart to-come", "A restart that nobody asks for", restart);
    }
    if (outcome.afterRestart && outcome.Last().story.fileKept) {
        const Pass& foreseen = *outcome.afterRestart;
        WriteStop(html, foreseen.story.failure ? "run to-come bad" : "run to-come",
                  "Run " + std::to_string(++number) + ", foreseen", {ForeseenText(foreseen)});
        if (foreseen.story.stoppedForRestart) {
            WriteStop(html, "restart to-come", "Restart, to come", {});
        }
    }
    if (outcome.furtherRun) {
        WriteStop(html, outcome.Settled() ? "run to-come" : "run to-come bad",
                  outcome.Settled() ? "Settled" : "Never settles",
                  {outcome.Settled() ? "A restart and a further run change nothing more."
                                     : "A further run would not leave the machine as it is."});
    }
}

}  // namespace host::report
