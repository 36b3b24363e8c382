#include "host/check/FindingText.h"

#include <algorithm>
#include <string_view>

#include "host/Text.h"

namespace host::check {

namespace {

using Json = nlohmann::ordered_json;

std::size_t Characters(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
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

}  // namespace

void PrintHeadline(const std::string& file, const Finding& finding, Output& output) {
    output.Line(Where(file, finding.place) + ": " + Name(finding.severity) + ": " + finding.message,
                finding.severity == Severity::kError ? Tone::kBad : Tone::kChange);
}

void PrintRemedy(const Finding& finding, Output& output) {
    if (!finding.remedy.empty()) {
        output.Line("  help: " + finding.remedy);
    }
}

void PrintFinding(const std::string& file, const Finding& finding, const std::string& line,
                  Output& output) {
    PrintHeadline(file, finding, output);
    if (finding.place.line != 0) {
        const Excerpt excerpt(line, finding.place);
        const std::string number = std::to_string(finding.place.line);
        output.Line("  " + number + " | " + excerpt.text);
        output.Line("  " + std::string(number.size(), ' ') + " | " + excerpt.caret, Tone::kQuiet);
    }
    PrintRemedy(finding, output);
}

Json ToJson(const Finding& finding, const std::string& line) {
    Json description{{"severity", Name(finding.severity)}, {"code", finding.code.Text()}};
    if (finding.place.line != 0) {
        description["line"] = finding.place.line;
        description["column"] = finding.place.column;
        description["length"] = finding.place.length;
        description["source"] = ToUtf8(Excerpt(line, finding.place).text);
    }
    description["message"] = ToUtf8(finding.message);
    if (!finding.remedy.empty()) {
        description["remedy"] = ToUtf8(finding.remedy);
    }
    return description;
}

}  // namespace host::check
