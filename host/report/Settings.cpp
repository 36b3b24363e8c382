#include "host/report/Settings.h"

#include <algorithm>
#include <string>

#include "host/configure/RowText.h"
#include "host/configure/Sections.h"
#include "host/configure/Values.h"

namespace host::report {

namespace {

using configure::Fate;
using configure::Row;
using configure::RowText;
using configure::SectionRows;

const char* WordFor(const Row& row) {
    switch (row.fate) {
        case Fate::kChange:
            return "change";
        case Fate::kAlreadySet:
            return configure::IsSkipped(row) ? "passed over" : "already set";
        case Fate::kFailed:
            return "fails";
        case Fate::kWaits:
            return "after restart";
        case Fate::kNotAttempted:
            return "not attempted";
        case Fate::kLabel:
            return "note";
        case Fate::kLeftAlone:
            return "left alone";
        case Fate::kIgnored:
            break;
    }
    return "no effect";
}

/// Whether what it is and what it becomes are worth two texts.
bool HasTwoSides(const Row& row) {
    const bool acts =
        row.fate == Fate::kChange || row.fate == Fate::kWaits || row.fate == Fate::kFailed;
    return acts && row.setting.kind != configure::Setting::Kind::kRoutes && row.current &&
           *row.current != row.wanted;
}

void WriteValues(Html& html, const Row& row, const RowText& told) {
    if (!HasTwoSides(row)) {
        html.Leaf("p", told.text, {{"class", "values"}});
        return;
    }
    {
        const auto values = html.Open("p", {{"class", "values"}});
        html.Leaf("code", configure::ListText(row.current), {{"class", "from"}});
        html.Leaf("span", Utf8{" \u2192 "}, {{"aria-hidden", "true"}});
        html.Leaf("span", " becomes ", {{"class", "spoken"}});
        html.Leaf("code", configure::ListText(row.wanted), {{"class", "to"}});
    }
    if (!row.reason.empty()) {
        html.Leaf("p", (row.fate == Fate::kFailed ? "fails: " : "") + row.reason,
                  {{"class", "reason"}});
    }
}

void WriteLines(Html& html, const std::vector<configure::SubLine>& lines) {
    const auto list = html.Open("ul", {{"class", "notes"}});
    for (const configure::SubLine& line : lines) {
        html.Leaf("li", line.text);
    }
}

void WriteRow(Html& html, const Row& row) {
    const RowText told = configure::TextOf(row, true);
    const auto item = html.Open("li", {{"class", configure::Identifier(row.fate)}});
    {
        const auto mark = html.Open("p", {{"class", "mark"}});
        if (told.sign != ' ') {
            html.Leaf("span", std::string(1, told.sign),
                      {{"class", "sign"}, {"aria-hidden", "true"}});
        }
        html.Text(WordFor(row));
    }
    const auto body = html.Open("div");
    {
        const auto what = html.Open("p", {{"class", "what"}});
        html.Leaf("strong", told.label);
        html.Leaf("span", " line " + std::to_string(row.setting.at.place.line),
                  {{"class", "place"}});
    }
    WriteValues(html, row, told);
    if (told.below.size() > configure::kRoutesShown) {
        const auto folded = html.Open("details");
        html.Leaf("summary", std::to_string(told.below.size()) + " lines");
        WriteLines(html, told.below);
    } else if (!told.below.empty()) {
        WriteLines(html, told.below);
    }
}

}  // namespace

void WriteSettings(Html& html, const configure::Pass& pass, bool isFirst, int level) {
    const std::vector<SectionRows> sections =
        isFirst ? configure::GroupBySection(pass.rows) : configure::GroupNewsBySection(pass.rows);
    for (const SectionRows& section : sections) {
        const auto group = html.Open("div", {{"class", "settings"}});
        html.Leaf(Heading(level), configure::HeadingOf(section));
        if (section.adapter != nullptr) {
            for (const std::string& note : section.adapter->setting.notes) {
                html.Leaf("p", note, {{"class", "reason"}});
            }
        }
        if (section.rows.empty()) {
            continue;
        }
        const auto list = html.Open("ul", {{"class", "rows"}});
        for (const Row* const row : section.rows) {
            WriteRow(html, *row);
        }
    }
    if (sections.empty()) {
        html.Leaf(
            "p",
            isFirst ? "The file has no settings." : "Nothing that the run before it did not do.",
            {{"class", "reason"}});
    }
}

}  // namespace host::report
