#include "host/report/PlanReport.h"

#include <algorithm>

#include "host/ExitCode.h"
#include "host/configure/Closing.h"
#include "host/configure/Codes.h"
#include "host/configure/RowText.h"
#include "host/configure/Values.h"
#include "host/reading/Secrets.h"
#include "host/report/Comparison.h"
#include "host/report/Page.h"
#include "host/report/Picture.h"
#include "host/report/Settings.h"
#include "host/report/Timeline.h"

namespace host::report {

namespace {

using configure::Outcome;
using configure::Pass;
using configure::ReportOptions;

struct Verdict {
    const char* style;
    const char* sign;
    const char* words;
};

Verdict VerdictOf(const Subject& subject) {
    const bool plan = subject.options.plan;
    switch (subject.exitCode) {
        case kDone:
            return {"good", "=", plan ? "Nothing to do" : "Done"};
        case kChangesPlanned:
            return {"change", "~", "Changes planned"};
        case kRestartNeeded:
            return {"change", ">", "Restart needed"};
        case kBadInput:
            return {"bad", "!", "The module refuses the file"};
        default:
            return {"bad", "!", plan ? "Would fail" : "Failed"};
    }
}

void WriteTexts(Html& html, const char* style, const std::vector<std::string>& texts) {
    if (texts.empty()) {
        return;
    }
    const auto box = html.Open("div", {{"class", style}});
    for (const std::string& text : texts) {
        html.Leaf("p", text);
    }
}

/// Of several runs the last one alone would say little.
std::vector<std::string> SummaryLines(const Subject& subject) {
    const std::vector<Pass>& passes = subject.outcome.passes;
    std::vector<std::string> lines;
    if (passes.size() > 1) {
        std::size_t changes = 0;
        for (const Pass& pass : passes) {
            changes += configure::CountRows(pass.rows).changes;
        }
        const std::string restarts = passes.size() == 2 ? "a restart" : "restarts";
        lines.push_back(std::to_string(passes.size()) + " runs with " + restarts +
                        " between them: " + configure::CountsText({.changes = changes}) + ".");
    }
    if (passes.size() == 1 || passes.back().story.failure) {
        lines.push_back(configure::SummaryText(subject.outcome, passes.back(), subject.options));
    }
    return lines;
}

void WriteVerdict(Html& html, const Subject& subject) {
    const Verdict verdict = VerdictOf(subject);
    {
        const auto box = html.Open("div", {{"class", std::string("verdict ") + verdict.style}});
        html.Leaf("span", verdict.sign, {{"class", "sign"}, {"aria-hidden", "true"}});
        const auto words = html.Open("div");
        html.Leaf("p", verdict.words, {{"class", "word"}});
        for (const std::string& line : SummaryLines(subject)) {
            html.Leaf("p", line);
        }
        html.Leaf("p", configure::NextStep(subject.outcome, subject.options), {{"class", "next"}});
    }
    WriteTexts(html, "warning", subject.options.warnings);
    WriteTexts(html, "back", subject.options.wayBack);
    WriteTexts(html, "warning", subject.outcome.violations);
}

void WriteFact(Html& html, const char* name, const std::string& value) {
    html.Leaf("dt", name);
    html.Leaf("dd", value);
}

void WriteFailure(Html& html, const Subject& subject) {
    const Pass& pass = subject.outcome.Last();
    if (!pass.story.failure) {
        return;
    }
    const configure::Failure& failure = *pass.story.failure;
    const auto section = html.Open("section");
    html.Leaf(Heading(subject.level), subject.options.plan ? "Why it would fail" : "Why it failed");
    const auto facts = html.Open("dl", {{"class", "facts"}});
    WriteFact(html, "What", configure::WhatFailed(pass));
    if (!failure.call.empty()) {
        WriteFact(html, "Call", failure.call);
    }
    if (const auto* const adapter = configure::AdapterOf(pass.run.before, failure.adapter)) {
        WriteFact(html, "Adapter", configure::AdapterLabel(*adapter));
    }
    WriteFact(html, "Code", configure::CodeText(failure.code) + ", " + failure.text);
}

/// The machine that the picture shows behind the arrow. A plan goes to the end of what it foresees,
/// a run to where it stands.
struct Afterwards {
    machine::State machine;
    const char* when;
};

Afterwards AfterwardsOf(const Subject& subject) {
    const Outcome& outcome = subject.outcome;
    if (!subject.options.plan || !outcome.Last().story.stoppedForRestart) {
        const char* const when =
            outcome.Last().story.failure
                ? subject.options.plan ? "Where it would fail" : "Where it failed"
            : subject.options.plan ? "As planned"
                                   : "After";
        return {outcome.machine, when};
    }
    const bool again = outcome.afterRestart && outcome.Last().story.fileKept;
    Afterwards afterwards{again ? outcome.afterRestart->run.after : outcome.machine,
                          "As planned, after the restart"};
    machine::ApplyRestart(afterwards.machine);
    return afterwards;
}

void WritePictures(Html& html, const Subject& subject) {
    const auto section = html.Open("section");
    html.Leaf(Heading(subject.level), "The machine before and after");
    const Afterwards afterwards = AfterwardsOf(subject);
    const auto figures = html.Open("div", {{"class", "figures"}});
    DrawParts(html, CompareParts(subject.outcome.passes.front().run.before, afterwards.machine),
              afterwards.when);
}

void WriteFindings(Html& html, const Subject& subject) {
    constexpr std::size_t kShown = 100;
    const check::Findings& found = subject.options.checked.findings;
    const std::vector<check::Finding>& findings = found.List();
    const std::size_t shown = std::min(findings.size(), kShown);
    const auto section = html.Open("section");
    html.Leaf(Heading(subject.level), "What check finds in the file");
    if (findings.empty()) {
        html.Leaf("p", "No faults.");
        return;
    }
    const auto list = html.Open("ul", {{"class", "rows"}});
    for (std::size_t i = 0; i < shown; ++i) {
        const check::Finding& finding = findings[i];
        const bool error = finding.severity == check::Severity::kError;
        const auto item = html.Open("li", {{"class", error ? "failed" : "waits"}});
        {
            const auto mark = html.Open("p", {{"class", "mark"}});
            html.Leaf("span", "!", {{"class", "sign"}, {"aria-hidden", "true"}});
            html.Text(error ? "error" : "warning");
        }
        const auto body = html.Open("div");
        {
            const auto what = html.Open("p", {{"class", "what"}});
            html.Leaf("strong", finding.code.Text());
            if (finding.place.line != 0) {
                html.Leaf("span", " line " + std::to_string(finding.place.line),
                          {{"class", "place"}});
            }
        }
        html.Leaf("p", finding.message, {{"class", "values"}});
        if (!finding.remedy.empty()) {
            html.Leaf("p", "help: " + finding.remedy, {{"class", "reason"}});
        }
    }
    const std::size_t all = found.Errors() + found.Warnings();
    if (all > shown) {
        html.Leaf("li", "and " + std::to_string(all - shown) + " more", {{"class", "ignored"}});
    }
}

void WriteLog(Html& html, const Subject& subject) {
    const Outcome& outcome = subject.outcome;
    const auto section = html.Open("section");
    html.Leaf(Heading(subject.level), "The module's log");
    for (const Pass& pass : outcome.passes) {
        const auto folded = html.Open("details");
        html.Leaf("summary", "Run " + std::to_string(&pass - outcome.passes.data() + 1) + ", " +
                                 std::to_string(pass.run.log.size()) + " lines");
        const auto list = html.Open("ol", {{"class", "log"}});
        for (const configure::Mark& mark : pass.run.log) {
            html.Leaf("li", "[" + std::to_string(mark.line.level) + "] " + mark.line.text);
        }
    }
}

void WriteInputs(Html& html, const Subject& subject) {
    const auto facts = html.Open("dl", {{"class", "facts"}});
    WriteFact(html, "File", subject.options.file);
    WriteFact(html, "SHA-256", subject.fileDigest);
    WriteFact(html, "Machine", subject.options.machine);
    if (!subject.machineDigest.empty()) {
        WriteFact(html, "SHA-256", subject.machineDigest);
    }
}

}  // namespace

void WritePlan(Html& html, const Subject& subject) {
    WriteVerdict(html, subject);
    WriteInputs(html, subject);
    WriteFailure(html, subject);
    WritePictures(html, subject);
    {
        const auto section = html.Open("section");
        html.Leaf(Heading(subject.level), "Settings");
        const bool several = subject.outcome.passes.size() > 1;
        for (const Pass& pass : subject.outcome.passes) {
            const bool isFirst = &pass == &subject.outcome.passes.front();
            if (several) {
                html.Leaf(Heading(subject.level + 1),
                          "Run " + std::to_string(&pass - subject.outcome.passes.data() + 1));
            }
            WriteSettings(html, pass, isFirst, subject.level + (several ? 2 : 1));
        }
    }
    {
        const auto section = html.Open("section");
        html.Leaf(Heading(subject.level), "Runs and restarts");
        WriteTimeline(html, subject.outcome, subject.options);
    }
    WriteFindings(html, subject);
    WriteLog(html, subject);
}

void WriteImprint(Html& html, const std::string& version) {
    const auto footer = html.Open("footer");
    html.Leaf("p", "Written " + DateText() + " by toolbox-host with version " + version +
                       " of the module config.");
}

std::string MakePlanPage(const Subject& subject, const std::string& version) {
    const std::string title = std::string(subject.options.plan ? "Plan: " : "Run: ") +
                              subject.options.file + " on " + subject.options.machine;
    Html html;
    {
        const auto header = html.Open("header");
        html.Leaf("p",
                  subject.options.plan        ? "Plan"
                  : subject.options.untilDone ? "Run until done"
                                              : "Run",
                  {{"class", "kind"}});
        const auto heading = html.Open("h1");
        html.Leaf("span", subject.options.file, {{"class", "file"}});
        html.Text(" on ");
        html.Leaf("span", subject.options.machine, {{"class", "file"}});
    }
    {
        const auto main = html.Open("main");
        WritePlan(html, subject);
    }
    WriteImprint(html, version);
    return MakePage(title, html.Written());
}

}  // namespace host::report
