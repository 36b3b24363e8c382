#include "host/configure/Report.h"

#include <algorithm>
#include <iterator>

#include "host/Text.h"
#include "host/check/FindingText.h"
#include "host/configure/Closing.h"
#include "host/configure/Codes.h"
#include "host/configure/RowText.h"
#include "host/configure/Sections.h"
#include "host/configure/Values.h"
#include "host/reading/SettingNames.h"

namespace host::configure {

namespace {

using Kind = Setting::Kind;

/// Prints the sections in columns: the line of the file, the sign, the name, the values.
class SectionPrinter {
public:
    SectionPrinter(const std::vector<Row>& rows, bool details, Output& output)
        : details_(details), output_(output) {
        for (const Row& row : rows) {
            placeWidth_ = std::max(placeWidth_, PlaceText(row).size());
        }
    }

    void Print(const SectionRows& section) {
        output_.Line("");
        output_.Line(HeadingOf(section), section.unread == nullptr ? Tone::kHeading : Tone::kQuiet);
        for (const Row* const row : section.rows) {
            Print(*row);
        }
        if (section.adapter != nullptr) {
            for (const std::string& note : section.adapter->setting.notes) {
                output_.Line(Indent() + note, Tone::kQuiet);
            }
        }
    }

private:
    static constexpr std::size_t kLabelWidth = 15;

    void Print(const Row& row) {
        const RowText told = TextOf(row, details_);
        output_.Line("  " + RightAligned(PlaceText(row), placeWidth_) + " " + told.sign + " " +
                         Padded(told.label, kLabelWidth) + told.text,
                     told.tone);
        for (const SubLine& line : told.below) {
            output_.Line(Indent() + line.text, line.tone);
        }
    }

    std::string Indent() const { return std::string(placeWidth_ + 5 + kLabelWidth, ' '); }

    bool details_;
    Output& output_;
    std::size_t placeWidth_ = 0;
};

void PrintSections(const Pass& pass, bool isFirst, bool details, Output& output) {
    SectionPrinter printer(pass.rows, details, output);
    for (const SectionRows& section :
         isFirst || details ? GroupBySection(pass.rows) : GroupNewsBySection(pass.rows)) {
        printer.Print(section);
    }
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

/// Whether a setting has told the change already.
bool IsTold(const Change& change, const std::vector<Row>& rows) {
    struct Teller {
        const char* what;
        std::vector<Kind> kinds;
    };
    static const Teller kTellers[] = {
        {"DHCP", {Kind::kDhcp, Kind::kAddresses}},
        {"IP addresses", {Kind::kAddresses}},
        {"gateways", {Kind::kGateways}},
        {"DNS servers", {Kind::kDnsServers}},
        {"DNS servers set by hand", {Kind::kDnsServers}},
        {"DNS suffixes", {Kind::kDnsSuffixes}},
        {"computer name after the restart", {Kind::kComputerName}},
        {"membership after the restart", {Kind::kDomain, Kind::kWorkgroup}},
        {"", {Kind::kRoutes}},
    };
    const auto* const teller = std::ranges::find_if(
        kTellers, [&change](const Teller& candidate) { return change.what == candidate.what; });
    return teller != std::end(kTellers) && std::ranges::any_of(rows, [&](const Row& row) {
               const bool isThere = change.where == row.adapter || change.where == "machine" ||
                                    change.where == "routes";
               return row.fate == Fate::kChange && isThere &&
                      std::ranges::find(teller->kinds, row.setting.kind) != teller->kinds.end();
           });
}

std::string Listed(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ", ") + text;
    }
    return joined.empty() ? "nothing" : joined;
}

/// What was done, what failed, what was not attempted: all three, always.
void PrintFailure(const Pass& pass, Output& output) {
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
        const std::string name = std::string(Label(row.setting.kind)) + " (" + PlaceText(row) + ")";
        if (row.fate == Fate::kChange) {
            done.push_back(name);
        } else if (row.fate == Fate::kNotAttempted) {
            left.push_back(name);
        }
    }
    output.Line("  done: " + Listed(done));
    output.Line("  not attempted: " + Listed(left));
}

std::string ReplyText(const Pass& pass) {
    std::string text;
    for (const Field& field : pass.run.reply) {
        text += (text.empty() ? "" : ", ") + field.name + "=" + field.Text();
    }
    return text.empty() ? "none" : text;
}

void PrintDetails(const Pass& pass, Output& output) {
    std::vector<Change> untold;
    std::ranges::copy_if(pass.changes, std::back_inserter(untold),
                         [&pass](const Change& change) { return !IsTold(change, pass.rows); });
    if (!untold.empty()) {
        output.Line("");
    }
    PrintChanges(untold, "What else changes on the machine:", output);
    if (!pass.story.failure) {
        output.Line("");
        output.Line("Reply: " + ReplyText(pass));
    }
}

void PrintSettled(const Outcome& outcome, Output& output) {
    if (outcome.furtherRun) {
        if (outcome.Settled()) {
            output.Line("Settled: another restart and run would change nothing.", Tone::kGood);
            return;
        }
        output.Line("Never settles: another run would change the machine again.", Tone::kBad);
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

/// One line for each fault that check finds; of very many the first.
void PrintFindings(const ReportOptions& options, Output& output) {
    constexpr std::size_t kShown = 10;
    const std::vector<check::Finding>& findings = options.checked.findings.List();
    for (std::size_t i = 0; i < std::min(findings.size(), kShown); ++i) {
        check::PrintHeadline(options.file, findings[i], output);
        check::PrintRemedy(findings[i], output);
    }
    if (findings.size() > kShown) {
        output.Line("... and " + std::to_string(findings.size() - kShown) +
                    " more findings: " + CheckCommandLine(options));
    }
}

void PrintPass(const Outcome& outcome, const Pass& pass, const ReportOptions& options,
               Output& output) {
    const bool isFirst = &pass == &outcome.passes.front();
    if (options.untilDone && options.extent != Extent::kSummary) {
        output.Line("");
        output.Line("Pass " + std::to_string(&pass - outcome.passes.data() + 1), Tone::kHeading);
    }
    if (options.extent != Extent::kSummary) {
        PrintChanges(Effective(pass.restart), "What took effect with the restart:", output);
        PrintSections(pass, isFirst, options.extent == Extent::kDetails, output);
        if (options.extent == Extent::kDetails) {
            PrintDetails(pass, output);
        }
        output.Line("");
    }
    output.Line(SummaryText(outcome, pass, options),
                pass.story.failure ? Tone::kBad : Tone::kHeading);
    if (pass.story.failure) {
        PrintFailure(pass, output);
        output.Line("Reply: " + ReplyText(pass), Tone::kBad);
    }
}

}  // namespace

void PrintReport(const Outcome& outcome, const ReportOptions& options, Output& output) {
    if (options.extent != Extent::kSummary) {
        output.Line((options.plan ? "Plan for " : "Running ") + options.file + " on " +
                    options.machine);
    }
    if (options.plan) {
        PrintFindings(options, output);
    }
    for (const Pass& pass : outcome.passes) {
        PrintPass(outcome, pass, options, output);
    }
    for (const std::string& line : RestartLines(outcome)) {
        output.Line(line);
    }
    if (options.untilDone) {
        PrintSettled(outcome, output);
    }
    for (const std::string& line : options.warnings) {
        output.Line(line, Tone::kBad);
    }
    for (const std::string& line : options.wayBack) {
        output.Line(line);
    }
    output.Line(NextStep(outcome, options));
}

}  // namespace host::configure
