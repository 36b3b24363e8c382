// Configuration files that this program writes: the lines, and what a line can hold.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::init {

/// Whether the module reads this very text after a "=".
bool CanBeValue(std::string_view text);
/// The same for a list, which it cuts at every comma. An empty list is none.
bool CanBeList(const std::vector<std::string>& items);

/// Puts a file together, line by line. Texts are in the system code page, as the file is.
class Writer {
public:
    /// Lines that the module passes over; control characters become "?".
    void Comment(std::string_view text);
    void Blank();
    /// While this is on, sections and entries become comments.
    void SetAside(bool aside) noexcept { aside_ = aside; }
    void Section(std::string_view name);
    /// `value` can be a value.
    void Entry(std::string_view key, std::string_view value);
    void Entry(std::string_view key, const std::vector<std::string>& items);
    /// An entry for whoever fills in what it waits for: a comment. Of any value.
    void EntryAside(std::string_view key, std::string_view value);

    const std::string& Text() const noexcept { return text_; }

private:
    void Line(std::string_view line);

    std::string text_;
    bool aside_ = false;
};

}  // namespace host::init
