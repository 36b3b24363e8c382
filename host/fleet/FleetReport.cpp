#include "host/fleet/FleetReport.h"

#include <vector>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/Text.h"
#include "host/configure/MachineFiles.h"
#include "host/configure/Report.h"
#include "host/report/Digest.h"
#include "host/report/Page.h"
#include "host/report/PlanReport.h"

namespace host::fleet {

namespace {

struct Look {
    const char* style;
    const char* sign;
    const char* word;
};

Look LookOf(Row::Verdict verdict) {
    switch (verdict) {
        case Row::Verdict::kRight:
            return {"already-set", "=", "right already"};
        case Row::Verdict::kChanges:
            return {"change", "~", "to change"};
        case Row::Verdict::kFails:
            return {"failed", "!", "would fail"};
        case Row::Verdict::kNotPlanned:
            break;
    }
    return {"not-attempted", "?", "no plan"};
}

std::string NumbersOf(const Row& row) {
    return "Changes: " + std::to_string(row.counts.changes) +
           "; already set: " + std::to_string(row.counts.alreadySet) +
           "; restart: " + RestartText(row.restart);
}

void WriteRecap(report::Html& html, const Row& row) {
    const Look look = LookOf(row.verdict);
    const auto line = html.Open("span", {{"class", std::string("machine ") + look.style}});
    {
        const auto mark = html.Open("span", {{"class", "mark"}});
        html.Leaf("span", look.sign, {{"class", "sign"}, {"aria-hidden", "true"}});
        html.Text(look.word);
    }
    const auto body = html.Open("span");
    html.Leaf("strong", row.name);
    if (row.verdict != Row::Verdict::kNotPlanned) {
        html.Leaf("span", NumbersOf(row), {{"class", "reason"}});
    }
    for (const std::string& remark : row.remarks) {
        html.Leaf("span", remark, {{"class", "reason"}});
    }
}

}  // namespace

void FleetReport::Add(const Planned& planned, const Row& row, const std::string& file,
                      const std::string& fileName) {
    if (!planned.result) {
        const auto box = machines_.Open("div", {{"class", "no-plan"}});
        WriteRecap(machines_, row);
        return;
    }
    const auto folded = machines_.Open("details");
    {
        const auto summary = machines_.Open("summary");
        WriteRecap(machines_, row);
    }
    std::vector<std::string> warnings;
    for (const std::string& lockOut : planned.result->lockOuts) {
        warnings.push_back("Warning: the agent may lose its connection here: " + lockOut + ".");
    }
    const configure::MachineChoice machine{planned.member.machine};
    const configure::ReportOptions options{.file = fileName,
                                           .machine = planned.member.machine,
                                           .fileWord = ShellWord(fileName),
                                           .machineOptions = machine.Options(),
                                           .plan = true,
                                           .checked = planned.result->checked,
                                           .warnings = warnings,
                                           .wayBack = {}};
    report::WritePlan(machines_, {planned.result->outcome, options, planned.exitCode,
                                  report::Sha256(ReadWholeFile(file)),
                                  report::Sha256(ReadWholeFile(planned.member.machine)), 3});
}

std::string FleetReport::MakePage(const Recap& recap, const std::string& folder,
                                  const std::string& version) const {
    report::Html html;
    {
        const auto header = html.Open("header");
        html.Leaf("p", "Plans for many machines", {{"class", "kind"}});
        const auto heading = html.Open("h1");
        html.Leaf("span", folder, {{"class", "file"}});
    }
    {
        const auto main = html.Open("main");
        const int code = recap.ExitCode();
        const char* const style = code == kDone             ? "verdict good"
                                  : code == kChangesPlanned ? "verdict change"
                                                            : "verdict bad";
        {
            const auto box = html.Open("div", {{"class", style}});
            const auto words = html.Open("div");
            html.Leaf("p", recap.Totals(), {{"class", "word"}});
            html.Leaf("p", recap.NextStep(), {{"class", "next"}});
        }
        html.Leaf("h2", "Machines");
        html.Append(machines_);
    }
    report::WriteImprint(html, version);
    return report::MakePage("Plans for " + folder, html.Written());
}

}  // namespace host::fleet
