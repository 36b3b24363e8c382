#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "host/LogSink.h"
#include "host/TextStream.h"

namespace host {

/// SARIF is JSON of a shape of its own, which the command makes.
enum class Format : std::uint8_t { kText, kJson, kSarif };

/// Whether lines of data have colours. Auto: where they lead to a terminal, unless the variable
/// NO_COLOR is there and not empty.
enum class Colours : std::uint8_t { kAuto, kAlways, kNever };

/// What a line of data is about, which its colour shows.
enum class Tone { kPlain, kHeading, kChange, kGood, kBad, kQuiet };

/// Where a command's results go: data to one stream, everything else to the other. As text it is
/// printed as it comes; as JSON it is gathered in one object that Finish prints as data. Everything
/// that is printed is UTF-8. A line of progress appears where the other stream leads to a terminal.
class Output {
public:
    /// The streams must outlive the object.
    Output(Format format, Colours colours, TextStream& data, TextStream& notes);

    /// As JSON of either shape.
    bool IsJson() const noexcept { return format_ != Format::kText; }
    bool IsSarif() const noexcept { return format_ == Format::kSarif; }

    /// A line of data for people, in the system code page; nothing as JSON.
    void Line(std::string_view text, Tone tone = Tone::kPlain);
    /// A line beside the data for people, in the system code page; nothing as JSON.
    void Note(std::string_view text);
    /// What is going on, on one line of the terminal that the next text replaces; an empty text
    /// removes it. Nothing where there is no terminal.
    void Progress(std::string_view text);
    /// The object that JSON output prints. Its texts must be UTF-8 (ToUtf8).
    nlohmann::ordered_json& Document() noexcept { return document_; }

    /// From here on JSON is one object a line: those that PrintJson prints, and at the end what
    /// Document() holds, if anything.
    void BeginLines() noexcept { inLines_ = true; }
    /// Prints the object at once; nothing as text. False where nobody reads any more.
    bool PrintJson(const nlohmann::ordered_json& object);

    /// A line of the module's log: "[level] text" beside the data, or an element of "log".
    void Log(const LogLine& line);
    /// Why the command failed, in the system code page: beside the data, whatever the format, and
    /// the member "error", which SARIF has not.
    void Error(std::string_view text);
    /// Data that is a document of its own, in UTF-8: printed as it is in either format, in place of
    /// the object.
    void Raw(std::string_view text);
    /// Data that is a configuration file: its bytes in either format, in the system code page, and
    /// as UTF-8 on a terminal.
    void File(std::string_view text);
    /// Prints the object. To be called once, at the end, whatever the outcome. Returns the exit
    /// code: the given one, or another where the data could not be written.
    int Finish(int exitCode);

private:
    /// Behind the data that came before: both streams may lead to one place.
    void WriteBeside(const std::string& utf8);

    Format format_;
    TextStream& data_;
    TextStream& notes_;
    bool colours_;
    std::size_t progressShown_ = 0;  ///< characters of it
    bool rawPrinted_ = false;
    bool inLines_ = false;
    nlohmann::ordered_json document_ = nlohmann::ordered_json::object();
};

}  // namespace host
