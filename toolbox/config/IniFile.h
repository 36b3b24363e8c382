#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Reads an INI-style file: named sections of key/value lines. Never writes it. Bytes are bytes:
/// nothing is converted, and NULs or unpaired quotes do not stop the parse.
///
/// Texts are kept as views into the file's bytes, which the reader holds until the next plain load.
class IniFile {
public:
    enum Result : std::uint32_t {
        kSuccess = 0,
        kFileError = 3,  ///< cannot be opened, is empty or cannot be read whole
        kKeyNotFound = 4,
        kSectionNotFound = 5,  ///< also: no further section in the walk
        kValueReplaced = 9,    ///< a merging load met a key whose value differed
        kNoMemory = 10,        ///< no memory for the file's contents
    };

    enum class LineEnding { kNone, kLineFeed, kCarriageReturnLineFeed };

    /// One line that was kept. A comment has an empty key and the whole line as its value.
    struct Entry {
        std::string_view key;
        std::string_view value;
        std::size_t line;  ///< counted from 1
    };

    /// What became of one line that is not blank. Texts are views into the file's bytes.
    struct Line {
        enum class Kind { kHeader, kComment, kEntry, kContinuation };

        Kind kind;
        std::size_t number;        ///< counted from 1
        std::string_view text;     ///< without the blanks at its ends
        std::string_view section;  ///< that it belongs to, spelled as at first; empty before any
        std::string_view name;     ///< a header's section or an entry's key, as it stands here
        std::string_view value;    ///< an entry's, without what continues it
        /// The line of the entry or comment that a continuation goes to; 0 where it is ignored.
        std::size_t continued = 0;
    };
    using LineObserver = std::function<void(const Line&)>;

    /// `caseSensitiveKeys` concerns the keys; section names never regard case.
    explicit IniFile(bool caseSensitiveKeys = false);
    ~IniFile();
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    /// For whoever wants to know where things stand; the module does not. To be set before a load.
    void ObserveLines(LineObserver observer) { lineObserver_ = std::move(observer); }

    /// Reads the whole file. Unless `merge` is true everything held before is discarded, but not
    /// before the new file has been read: after kFileError the reader is as it was. After kNoMemory
    /// it may be as it was or empty. Throws nothing.
    std::uint32_t Load(const std::string& path, bool merge);

    /// Assigns the first value of that key. On failure `value` is left exactly as it was.
    std::uint32_t GetValue(std::string_view section, std::string_view key,
                           std::string& value) const;

    /// The first entry of that key; null when there is none. Valid until the next load.
    const Entry* Find(std::string_view section, std::string_view key) const;

    /// The walk over the section names in the order of their first appearance. `name` is assigned
    /// on success only.
    std::uint32_t GetFirstSection(std::string& name);
    std::uint32_t GetNextSection(std::string& name);

    /// The entries of a section in file order, comments included; null when there is none. Valid
    /// until the next load.
    const std::vector<Entry>* Entries(std::string_view section) const;

    /// What the last load has read.
    std::string_view Bytes() const noexcept { return bytes_; }
    const std::string& Path() const noexcept { return path_; }
    LineEnding Ending() const noexcept { return ending_; }
    /// Cleared by every load that returns kSuccess. After kValueReplaced: whether that load, or one
    /// before it, added entries, or replaced values.
    bool EntriesModified() const noexcept { return entriesModified_; }
    bool ValuesModified() const noexcept { return valuesModified_; }

private:
    class NameIndex;
    struct Section;

    std::uint32_t Parse(std::string_view text, bool merge);
    void Clear();
    void Tell(const Line& line) const {
        if (lineObserver_) {
            lineObserver_(line);
        }
    }
    Section& OpenSection(std::string_view name);
    // Both take what has been added since the last look-up into the index that they search.
    Section* FindSection(std::string_view name) const;
    static const Entry* FindIn(Section& section, std::string_view key);
    static std::size_t FindEntry(Section& section, std::string_view key);
    bool MergeEntry(Section& section, const Entry& entry);
    static void Append(Section& section, const Entry& entry);
    /// Returns the line of the entry that is continued; 0 when there is none.
    std::size_t ContinueEntry(Section& section, std::string_view text);

    bool caseSensitiveKeys_;
    std::string path_;
    std::vector<std::unique_ptr<Section>> sections_;
    std::unique_ptr<NameIndex> sectionIndex_;
    LineObserver lineObserver_;                     // empty unless set
    std::string_view bytes_;                        // of the last load
    std::vector<std::unique_ptr<char[]>> buffers_;  // the loaded files' bytes
    std::deque<std::string> texts_;                 // values put together from several lines
    std::size_t cursor_ = 0;
    LineEnding ending_ = LineEnding::kNone;
    bool entriesModified_ = false;
    bool valuesModified_ = false;
};
