#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// Text of the system code page as UTF-8. A byte that means nothing in the code page becomes
/// U+FFFD; no input fails.
std::string ToUtf8(std::string_view text);

/// The characters of a text in UTF-8.
std::size_t CountCharacters(std::string_view utf8);

/// ToUtf8 for one line of a terminal: control characters (line feeds too) are written as \xNN, so
/// that a text from a file or a message can neither move the cursor nor look like another line.
std::string ToLine(std::string_view text);

/// How many characters ToLine makes of it.
std::size_t ShownWidth(std::string_view text);

/// The text with blanks behind it, or before it, so that it shows as `width` characters at least.
std::string Padded(const std::string& text, std::size_t width);
std::string RightAligned(const std::string& text, std::size_t width);

/// "1,234"
std::string Grouped(std::size_t number);

/// "1 error", "2 errors"
std::string Counted(std::size_t count, const std::string& noun);

/// One word of a command line, in quotation marks where it needs them.
std::string ShellWord(const std::string& text);

/// What Windows says about an error code, in the system code page, without a final line feed, and
/// with the code: "Access is denied. (error 5)".
std::string DescribeSystemError(std::uint32_t code);

}  // namespace host
