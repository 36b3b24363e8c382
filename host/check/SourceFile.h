#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/check/Finding.h"

namespace host::check {

enum class LineKind { kBlank, kHeader, kComment, kEntry, kContinuation };

/// One line of a configuration file, taken apart as the module's reader does it. The texts are
/// views into the file.
struct SourceLine {
    std::string_view raw;   ///< as it stands, without its line feed
    std::string_view text;  ///< what the reader looks at: up to a carriage return, trimmed
    LineKind kind = LineKind::kBlank;
    std::string_view name;          ///< a header's section
    std::string_view key;           ///< an entry's key
    std::string_view value;         ///< an entry's value on this line
    std::string_view section;       ///< the section that the line is in; empty before any
    std::size_t continuedLine = 0;  ///< the entry that a continuation goes to; 0 for none
};

/// A configuration file line by line: where things stand, and how a line may be shown.
class SourceFile {
public:
    SourceFile() = default;
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    /// False when the file cannot be read.
    bool Load(const std::string& path);

    const std::string& Bytes() const noexcept { return bytes_; }
    std::size_t LineCount() const noexcept { return lines_.size(); }
    /// `number` counts from 1.
    const SourceLine& Line(std::size_t number) const { return lines_.at(number - 1); }

    /// Where a section's name first stands in brackets; line 0 when it does not.
    Place HeaderOf(std::string_view section) const;
    /// The lines of a section's entries, in file order. Section names regard no case.
    std::vector<std::size_t> EntriesOf(std::string_view section) const;

    Place PlaceOf(std::size_t number, std::string_view piece) const;
    Place KeyPlace(std::size_t number) const { return PlaceOf(number, Line(number).key); }
    /// A piece of the value of an entry; the whole value on its own line where the piece stands on
    /// a line that continues it.
    Place ValuePlace(std::size_t number, std::size_t offset, std::size_t length) const;
    Place ValuePlace(std::size_t number) const;

    /// The line as it may be printed: the value of a secret key is masked, and so is
    /// what continues it.
    std::string Shown(std::size_t number) const;

private:
    struct NoCaseHash {
        std::size_t operator()(std::string_view text) const;
    };
    struct NoCaseEqualTo {
        bool operator()(std::string_view left, std::string_view right) const;
    };
    struct Section {
        std::size_t header = 0;
        std::vector<std::size_t> entries;
        std::size_t last = 0;  // entry or comment, which a line without "=" continues
    };

    void TakeApart();

    std::string bytes_;
    std::vector<SourceLine> lines_;
    std::unordered_map<std::string_view, Section, NoCaseHash, NoCaseEqualTo> sections_;
};

/// Whether a key's value must not be shown: the enciphered account name and password, and what
/// looks like a misspelling of theirs.
bool IsSecretKey(std::string_view key);

}  // namespace host::check
