#include "host/check/CheckCommand.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "host/ExitCode.h"
#include "host/Files.h"
#include "host/Text.h"
#include "host/check/FileCheck.h"
#include "host/reading/Secrets.h"

namespace host::check {

namespace {

using Json = nlohmann::ordered_json;

struct CheckArguments {
    std::string file;
    bool strict = false;
};

std::size_t Characters(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    }));
}

/// A line of the file, and under it the caret, for people: a long line is cut around the place.
class Excerpt {
public:
    Excerpt(std::string_view whole, const Place& place) {
        constexpr std::size_t kBefore = 60;
        constexpr std::size_t kShown = 160;
        std::size_t start = std::min(place.column - 1, whole.size());
        const std::size_t cut = start > kBefore ? start - kBefore : 0;
        std::string line = cut > 0 ? "..." : "";
        start += line.size() - cut;
        line += whole.substr(cut, kShown);
        line += whole.size() > cut + kShown ? "..." : "";
        const std::size_t end = std::min(start + std::max<std::size_t>(place.length, 1),
                                         std::max(line.size(), start + 1));
        const auto width = [&line](std::size_t from, std::size_t to) {
            return from >= line.size() ? 0 : Characters(ToLine(line.substr(from, to - from)));
        };
        // Tabs stay tabs, so that the caret stands under its character whatever their width.
        std::string indent = line.substr(0, start);
        std::erase_if(indent, [](char character) { return character != '\t'; });
        const std::size_t tabs = indent.size();
        indent.append(width(0, start) - std::min(width(0, start), tabs), ' ');
        text = line;
        caret = indent + "^";
        const std::size_t length = width(start, end);
        caret.append(length > 1 ? length - 1 : 0, '~');
    }

    std::string text;
    std::string caret;
};

const char* Name(Severity severity) {
    return severity == Severity::kError ? "error" : "warning";
}

std::string Where(const std::string& path, const Place& place) {
    return place.line == 0
               ? path
               : path + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void PrintFinding(const std::string& path, const Finding& finding, const std::string& line,
                  Output& output) {
    const bool isError = finding.severity == Severity::kError;
    output.Line(Where(path, finding.place) + ": " + Name(finding.severity) + ": " + finding.message,
                isError ? Tone::kBad : Tone::kChange);
    if (finding.place.line != 0) {
        const Excerpt excerpt(line, finding.place);
        const std::string number = std::to_string(finding.place.line);
        output.Line("  " + number + " | " + excerpt.text);
        output.Line("  " + std::string(number.size(), ' ') + " | " + excerpt.caret, Tone::kQuiet);
    }
}

void DescribeFinding(const Finding& finding, const std::string& line, Output& output) {
    Json description{{"severity", Name(finding.severity)}, {"code", finding.code}};
    if (finding.place.line != 0) {
        description["line"] = finding.place.line;
        description["column"] = finding.place.column;
        description["length"] = finding.place.length;
        description["source"] = ToUtf8(Excerpt(line, finding.place).text);
    }
    description["message"] = ToUtf8(finding.message);
    output.Document()["findings"].push_back(std::move(description));
}

int Check(const CheckArguments& arguments, Output& output) {
    static_cast<void>(ReadWholeFile(arguments.file));  // says why where it cannot be read
    const CheckedFile checked = CheckFile(arguments.file);
    const Findings& findings = checked.findings;
    output.Document() = {{"file", ToUtf8(arguments.file)},
                         {"errors", findings.Errors()},
                         {"warnings", findings.Warnings()},
                         {"findings", Json::array()}};
    std::size_t number = 0;
    std::string line;  // a line may be long and have many findings
    for (const Finding& finding : findings.List()) {
        if (finding.place.line != 0 &&
            finding.place.line != std::exchange(number, finding.place.line)) {
            line = reading::ShownLine(checked.file, number);
        }
        PrintFinding(arguments.file, finding, line, output);
        DescribeFinding(finding, line, output);
    }
    const std::size_t all = findings.Errors() + findings.Warnings();
    if (all > findings.List().size()) {
        output.Line("... and " + std::to_string(all - findings.List().size()) + " more");
    }
    output.Line(all == 0 ? arguments.file + ": no faults"
                         : arguments.file + ": " + Counted(findings.Errors(), "error") + ", " +
                               Counted(findings.Warnings(), "warning"),
                all == 0 ? Tone::kGood : Tone::kPlain);
    const bool refused = findings.Errors() > 0 || (arguments.strict && all > 0);
    output.Document()["accepted"] = !refused;
    return refused ? kBadInput : kDone;
}

}  // namespace

void AddCheckCommand(CLI::App& app, Action& action) {
    CLI::App* const check =
        app.add_subcommand("check", "Find every fault of a configuration file, without running it");
    const auto arguments = std::make_shared<CheckArguments>();
    check->add_option("file", arguments->file, "The configuration file")
        ->required()
        ->type_name("FILE")
        ->check(NotEmpty());
    check->add_flag("--strict", arguments->strict, "Take warnings for errors");
    check->callback([&action, arguments] {
        action = [arguments](Output& output) { return Check(*arguments, output); };
    });
}

}  // namespace host::check
