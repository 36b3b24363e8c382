#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>

#include "host/LogSink.h"

namespace host {

enum class Format { kText, kJson };

/// What a line of data is about; on a terminal it has a colour, elsewhere it makes no difference.
enum class Tone { kPlain, kHeading, kChange, kGood, kBad, kQuiet };

/// Where a command's results go: data to one stream, everything else to the other. As text it is
/// printed as it comes; as JSON it is gathered in one object that Finish prints as data. Everything
/// that is printed is UTF-8. Colours and the progress line appear where the stream is the program's
/// own and a terminal; a NO_COLOR that is not empty turns the colours off.
class Output {
public:
    /// The streams must outlive the object.
    Output(Format format, std::ostream& data, std::ostream& notes);

    bool IsJson() const noexcept { return format_ == Format::kJson; }

    /// A line of data for people, in the system code page; nothing as JSON.
    void Line(std::string_view text, Tone tone = Tone::kPlain);
    /// A line beside the data for people, in the system code page; nothing as JSON.
    void Note(std::string_view text);
    /// What is going on, on one line of the terminal that the next text replaces; an empty text
    /// removes it. Nothing where there is no terminal.
    void Progress(std::string_view text);
    /// The object that JSON output prints. Its texts must be UTF-8 (ToUtf8).
    nlohmann::ordered_json& Document() noexcept { return document_; }

    /// A line of the module's log: "[level] text" beside the data, or an element of "log".
    void Log(const LogLine& line);
    /// Why the command failed, in the system code page: beside the data, whatever the format, and
    /// the member "error".
    void Error(std::string_view text);
    /// Data that is a document of its own, in UTF-8: printed as it is in either format, in place of
    /// the object.
    void Raw(std::string_view text);
    /// Prints the object. To be called once, at the end, whatever the outcome.
    void Finish();

private:
    Format format_;
    std::ostream& data_;
    std::ostream& notes_;
    bool colours_;
    bool showsProgress_;
    bool progressShown_ = false;
    bool rawPrinted_ = false;
    nlohmann::ordered_json document_ = nlohmann::ordered_json::object();
};

}  // namespace host
