#include "host/Output.h"

#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include "common/util/Strings.h"
#include "host/Text.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

/// Whether the stream is a terminal that obeys control sequences. Windows consoles must be told to;
/// those before Windows 10 cannot.
bool IsTerminal(const std::ostream& stream) {
    const bool isOut = &stream == &std::cout;
    if (!isOut && &stream != &std::cerr) {
        return false;
    }
    if (_isatty(_fileno(isOut ? stdout : stderr)) == 0) {
        return false;
    }
    const HANDLE console = GetStdHandle(isOut ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0;
    constexpr DWORD kVirtualTerminal = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    return GetConsoleMode(console, &mode) != 0 &&
           SetConsoleMode(console, mode | kVirtualTerminal) != 0;
}

bool ColoursAreWanted() {
    const char* const refusal = std::getenv("NO_COLOR");
    return refusal == nullptr || *refusal == '\0';
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

Output::Output(Format format, std::ostream& data, std::ostream& notes)
    : format_(format),
      data_(data),
      notes_(notes),
      colours_(ColoursAreWanted() && IsTerminal(data)),
      showsProgress_(IsTerminal(notes)) {}

void Output::Line(std::string_view text, Tone tone) {
    if (IsJson()) {
        return;
    }
    Progress({});
    const bool coloured = colours_ && tone != Tone::kPlain;
    data_ << (coloured ? Colour(tone) : "") << ToLine(text) << (coloured ? "\x1b[0m\n" : "\n");
}

void Output::Progress(std::string_view text) {
    if (!showsProgress_ || (text.empty() && !progressShown_)) {
        return;
    }
    notes_ << "\r\x1b[K" << ToLine(text) << std::flush;
    progressShown_ = !text.empty();
}

void Output::Note(std::string_view text) {
    Progress({});
    if (!IsJson()) {
        notes_ << ToLine(text) << '\n' << std::flush;
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
    notes_ << "toolbox-host: " << ToLine(text) << '\n' << std::flush;
    document_["error"] = ToUtf8(text);
}

void Output::Raw(std::string_view text) {
    Progress({});
    data_ << text;
    rawPrinted_ = true;
}

void Output::Finish() {
    Progress({});
    if (IsJson() && !rawPrinted_) {
        data_ << document_.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    }
    data_ << std::flush;
}

}  // namespace host
