#include "host/Output.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "common/util/Strings.h"
#include "host/ExitCode.h"
#include "host/Text.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

bool AreWanted(Colours colours, const Destination& destination) {
    const char* const refusal = std::getenv("NO_COLOR");
    return colours == Colours::kAlways || (colours == Colours::kAuto && destination.isTerminal &&
                                           (refusal == nullptr || *refusal == '\0'));
}

/// As many characters as there is room for.
std::string Shortened(std::string text, std::size_t room) {
    constexpr std::string_view kDots = "...";
    if (CountCharacters(text) <= room) {
        return text;
    }
    while (!text.empty() && CountCharacters(text) + kDots.size() > room) {
        text.pop_back();
    }
    return text.append(kDots);
}

const char* Colour(Tone tone) {
    switch (tone) {
        case Tone::kHeading:
            return "\x1b[1m";
        case Tone::kChange:
            return "\x1b[33m";
        case Tone::kGood:
            return "\x1b[32m";
        case Tone::kBad:
            return "\x1b[31m";
        case Tone::kQuiet:
            return "\x1b[2m";
        case Tone::kPlain:
            break;
    }
    return "";
}

}  // namespace

Output::Output(Format format, Colours colours, TextStream& data, TextStream& notes)
    : format_(format), data_(data), notes_(notes), colours_(AreWanted(colours, data.Leads())) {}

void Output::Line(std::string_view text, Tone tone) {
    if (IsJson()) {
        return;
    }
    Progress({});
    const bool coloured = colours_ && tone != Tone::kPlain;
    data_.Write((coloured ? Colour(tone) : "") + ToLine(text) + (coloured ? "\x1b[0m\n" : "\n"));
}

void Output::WriteBeside(const std::string& utf8) {
    data_.Flush();
    notes_.Write(utf8);
    notes_.Flush();
}

void Output::Progress(std::string_view text) {
    const Destination& destination = notes_.Leads();
    if (!destination.isTerminal || (text.empty() && progressShown_ == 0)) {
        return;
    }
    // A line that fills the terminal would wrap and could not be replaced; the echo of Ctrl-C has
    // room too. Blanks remove the old line: without colours there is no control sequence at all.
    constexpr std::size_t kMargin = 3;
    const std::size_t room = std::max(destination.columns, kMargin) - kMargin;
    const std::string line = Shortened(ToLine(text), room);
    const std::size_t length = CountCharacters(line);
    const std::size_t rest = progressShown_ - std::min(progressShown_, length);
    WriteBeside("\r" + line + std::string(rest, ' ') + (rest > 0 ? "\r" + line : ""));
    progressShown_ = length;
}

void Output::Note(std::string_view text) {
    Progress({});
    if (!IsJson()) {
        WriteBeside(ToLine(text) + "\n");
    }
}

void Output::Log(const LogLine& line) {
    Note(util::Format("[%u] ", line.level) + line.text);
    if (IsJson()) {
        document_["log"].push_back({{"level", line.level}, {"text", ToUtf8(line.text)}});
    }
}

void Output::Error(std::string_view text) {
    Progress({});
    WriteBeside("toolbox-host: " + ToLine(text) + "\n");
    if (!IsSarif()) {
        document_["error"] = ToUtf8(text);
    }
}

void Output::Raw(std::string_view text) {
    Progress({});
    data_.Write(text);
    rawPrinted_ = true;
}

void Output::File(std::string_view text) {
    Raw(data_.Leads().isTerminal ? ToUtf8(text) : text);
}

bool Output::PrintJson(const Json& object) {
    if (IsJson()) {
        Progress({});
        data_.Write(object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n");
        data_.Flush();
    }
    return data_.Error() == 0;
}

int Output::Finish(int exitCode) {
    Progress({});
    const bool hasNothing = (IsSarif() || inLines_) && document_.empty();
    if (IsJson() && !rawPrinted_ && !hasNothing) {
        const int indent = inLines_ ? -1 : 2;
        data_.Write(document_.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n");
    }
    data_.Flush();
    switch (data_.Error()) {
        case 0:
            return exitCode;
        case ERROR_BROKEN_PIPE:
        case ERROR_NO_DATA:
        case ERROR_PIPE_NOT_CONNECTED:
            // "toolbox-host ... | head": the reader has what it wants.
            return kReaderGone;
        default:
            Error("cannot write to standard output: " + DescribeSystemError(data_.Error()));
            return kFailure;
    }
}

}  // namespace host
