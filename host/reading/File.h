// The one understanding of a configuration file: the module's own reader and its own look-ups and
// events, followed once, as data. What a check, a plan or a report says about a file comes from
// here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "host/reading/Keys.h"
#include "toolbox/config/IniFile.h"

namespace host::reading {

/// A piece of a line of the file, in bytes; `line` and `column` count from 1. Line 0 means the file
/// as a whole.
struct Place {
    std::size_t line = 0;
    std::size_t column = 1;
    std::size_t length = 0;
};

/// A key with its value. Texts are views into the file's memory.
struct Entry {
    std::string_view key;    ///< as the file spells it
    std::string_view value;  ///< with what continues it, each line after a line feed
    Place keyPlace;
    Place valuePlace;              ///< on the entry's own line
    const Entry* first = nullptr;  ///< the entry of the same key that hides this one; null for none
    bool found = false;            ///< by a look-up of the module

    std::size_t Line() const noexcept { return keyPlace.line; }
};

/// One event that the module sends. A value that stands in the file is a view of it there; what the
/// module would decipher is "***".
struct Event {
    std::uint32_t kind;
    std::uint32_t type;
    std::string_view value;
};

/// One look-up of the module, the text it holds afterwards and what it sends before the next one.
/// The module keeps one text for all look-ups: where a key is missing, it is that of a key found
/// before.
struct LookUp {
    std::string key;  ///< that was asked for
    bool found = false;
    const Entry* source = nullptr;  ///< whose text the module holds; null where there is none yet
    std::vector<Event> events;

    std::string_view Text() const noexcept {
        return source == nullptr ? std::string_view() : source->value;
    }
    bool Sends(std::uint32_t kind) const;
};

struct Section {
    std::string name;  ///< as it is spelled at first
    SectionRole role = SectionRole::kIgnored;
    Place header;                ///< of the name where it stands first; line 0 before any header
    std::vector<Entry> entries;  ///< in file order
    /// In the module's order, and as if no section before had made the module give the file up.
    std::vector<LookUp> lookUps;
    bool reached = true;    ///< the module comes to the section
    bool cutShort = false;  ///< a count that it refuses ends the look-ups

    /// The first look-up of the key; null when the module does not ask for it.
    const LookUp* Find(std::string_view key) const;
    /// Whether an adapter section has the key without which the module sends nothing of it.
    bool HasDescription() const;
};

/// Why the module gives the file up while it reads it. Host names that do not resolve, and what a
/// machine says, are not among the reasons.
struct Refusal {
    config::ErrorKind kind;
    const Section* section;  ///< that the module is in
};

/// A configuration file as the module reads it. Pointers and views into it hold as long as it
/// lives; it may be moved.
class File {
public:
    enum class State { kRead, kEmpty, kUnreadable };

    /// Never throws for what stands in the file, or for want of it.
    static File Read(const std::string& path);

    State GetState() const noexcept { return state_; }
    std::string_view Bytes() const noexcept { return ini_->Bytes(); }
    std::size_t LineCount() const noexcept { return starts_.size(); }
    /// As it stands there, without its line feed. `number` counts from 1.
    std::string_view Line(std::size_t number) const;
    /// What the reader has made of the lines that are not blank, in file order.
    const std::vector<IniFile::Line>& Lines() const noexcept { return lines_; }
    /// The same for one line; null for a blank one.
    const IniFile::Line* LineAt(std::size_t number) const;

    /// In the order of the module's walk.
    const std::vector<Section>& Sections() const noexcept { return sections_; }
    /// Null when there is none. Regards no case.
    const Section* Find(std::string_view section) const;
    /// The entry that a look-up finds; null when there is none.
    const Entry* Find(std::string_view section, std::string_view key) const;
    /// The entry that begins in that line; null when none does.
    const Entry* EntryAt(std::size_t line) const;

    const std::optional<Refusal>& GetRefusal() const noexcept { return refusal_; }

    /// Where a piece of a value, a key, a line stands: a view that this object has given, or a part
    /// of one. Of a piece that goes on in a further line it is the part in the first; of a text
    /// that is not the file's, the whole file.
    Place PlaceOf(std::string_view piece) const;

private:
    /// A line's share of a value that several lines make up.
    struct Share {
        std::size_t offset;  // in the value
        std::string_view text;
    };
    struct NoCaseLess {
        bool operator()(std::string_view left, std::string_view right) const noexcept {
            return util::NoCaseLess(left, right);
        }
    };

    File() = default;
    void TakeLines();
    void TakeSections();
    void TakeEntries(Section& section);
    void TakeContinuedValues();
    Place PlaceInBytes(std::string_view piece) const;

    std::unique_ptr<IniFile> ini_ = std::make_unique<IniFile>();
    State state_ = State::kUnreadable;
    std::vector<std::size_t> starts_;  // of the lines
    std::vector<IniFile::Line> lines_;
    std::vector<Section> sections_;
    std::map<std::string_view, Section*, NoCaseLess> sectionsByName_;
    std::unordered_map<std::size_t, Entry*> entriesByLine_;
    // By where the value begins in memory.
    std::map<const char*, std::vector<Share>> continuedValues_;
    std::optional<Refusal> refusal_;
};

}  // namespace host::reading
