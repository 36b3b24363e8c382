#include "toolbox/config/IniFile.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

#include "common/util/Strings.h"

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// The next up to 8 bytes of a name, with the bit that tells lower from upper case cleared.
std::uint64_t CaselessWord(const char* bytes, std::size_t count) noexcept {
    constexpr std::uint64_t kLetterCase = 0x2020202020202020ULL;
    std::uint64_t word = 0;
    if (count == sizeof word) {
        std::memcpy(&word, bytes, sizeof word);
    } else {
        for (std::size_t i = 0; i < count; ++i) {
            word = word << 8U | static_cast<unsigned char>(bytes[i]);
        }
    }
    return word & ~kLetterCase;
}

/// Whether the names can be equal: numbered ones differ in their last byte.
bool MayBeEqual(std::string_view left, std::string_view right) noexcept {
    return left.size() == right.size() &&
           (left.empty() || CaselessWord(&left.back(), 1) == CaselessWord(&right.back(), 1));
}

/// Names that are equal without regard to case have the same hash.
std::uint64_t HashNoCase(std::string_view name) noexcept {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
    constexpr std::size_t kWord = sizeof(std::uint64_t);
    std::uint64_t hash = name.size();
    const auto mix = [&hash](std::uint64_t word) {
        hash = (hash ^ word) * kMultiplier;
        hash ^= hash >> 32U;
    };
    if (name.size() < kWord) {
        mix(CaselessWord(name.data(), name.size()));
    } else {
        for (std::size_t at = 0; at + kWord < name.size(); at += kWord) {
            mix(CaselessWord(name.data() + at, kWord));
        }
        mix(CaselessWord(name.data() + name.size() - kWord, kWord));
    }
    // A multiplication carries a difference upwards only: once more, for the low bits' sake.
    hash *= kMultiplier;
    return hash ^ (hash >> 32U);
}

/// Cuts a text into its trimmed, non-empty lines.
class LineSplitter {
public:
    explicit LineSplitter(std::string_view text) noexcept
        : rest_(text), hasCarriageReturns_(text.find('\r') != std::string_view::npos) {}

    /// Nothing when the text is at its end.
    std::optional<std::string_view> Next() noexcept {
        while (!rest_.empty()) {
            ++number_;
            const std::size_t end = rest_.find('\n');
            std::string_view line = rest_.substr(0, end);
            rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
            const std::size_t carriageReturn =
                hasCarriageReturns_ ? line.find('\r') : std::string_view::npos;
            if (number_ == 1 && end != std::string_view::npos) {
                ending_ = carriageReturn == std::string_view::npos
                              ? IniFile::LineEnding::kLineFeed
                              : IniFile::LineEnding::kCarriageReturnLineFeed;
            }
            line = util::TrimBlanks(line.substr(0, carriageReturn));
            if (!line.empty()) {
                return line;
            }
        }
        return std::nullopt;
    }

    std::size_t Number() const noexcept { return number_; }
    IniFile::LineEnding Ending() const noexcept { return ending_; }

private:
    std::string_view rest_;
    bool hasCarriageReturns_;  // one look at the whole text spares one at each line
    std::size_t number_ = 0;
    IniFile::LineEnding ending_ = IniFile::LineEnding::kNone;
};

std::string_view SectionName(std::string_view line) noexcept {
    line.remove_prefix(1);
    return util::TrimBlanks(line.substr(0, line.find(']')));
}

}  // namespace

/// Open addressing over the positions of a growing list of names; the first of equal names wins.
class IniFile::NameIndex {
public:
    /// The position of that name among the first `count`, or `count`. `nameAt` gives the name at a
    /// position. Names added since the last call are taken in first, so that a load that looks up
    /// as it appends stays linear.
    template <class NameAt, class Equal>
    std::size_t Find(std::size_t count, std::string_view name, NameAt nameAt, Equal equal) {
        // Below this a scan is quicker.
        constexpr std::size_t kFew = 16;
        if (count <= kFew) {
            std::size_t position = 0;
            while (position < count &&
                   !(MayBeEqual(nameAt(position), name) && equal(nameAt(position), name))) {
                ++position;
            }
            return position;
        }
        if (slots_.size() < count * 2) {
            slots_.assign(std::bit_ceil(count * 3), Slot());
            indexed_ = 0;
        }
        for (; indexed_ < count; ++indexed_) {
            const std::string_view added = nameAt(indexed_);
            const std::uint64_t hash = HashNoCase(added);
            Slot& slot = SlotFor(hash, added, nameAt, equal);
            if (slot.next == 0) {
                slot = {indexed_ + 1, hash};
            }
        }
        const Slot& slot = SlotFor(HashNoCase(name), name, nameAt, equal);
        return slot.next == 0 ? count : slot.next - 1;
    }

private:
    struct Slot {
        std::size_t next = 0;  // the position after the name's; 0 in a free slot
        std::uint64_t hash = 0;
    };

    template <class NameAt, class Equal>
    Slot& SlotFor(std::uint64_t hash, std::string_view name, NameAt nameAt, Equal equal) {
        std::size_t at = hash & (slots_.size() - 1);
        while (slots_[at].next != 0 &&
               (slots_[at].hash != hash || !equal(nameAt(slots_[at].next - 1), name))) {
            at = (at + 1) & (slots_.size() - 1);
        }
        return slots_[at];
    }

    std::vector<Slot> slots_;  // a power of two of them, at least half of them free
    std::size_t indexed_ = 0;
};

struct IniFile::Section {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::string_view name;
    std::vector<Entry> entries;
    std::size_t previous = kNone;           // the entry that a continuation line continues
    std::string* continuedValue = nullptr;  // its value, once it has been continued
    NameIndex index;
};

IniFile::IniFile(bool caseSensitiveKeys)
    : caseSensitiveKeys_(caseSensitiveKeys), sectionIndex_(std::make_unique<NameIndex>()) {}

IniFile::~IniFile() = default;

std::uint32_t IniFile::Load(const std::string& path, bool merge) {
    const File file(std::fopen(path.c_str(), "rb"));
    // One read takes everything: a buffer of the library's own would only cost.
    if (!file || std::setvbuf(file.get(), nullptr, _IONBF, 0) != 0 ||
        std::fseek(file.get(), 0, SEEK_END) != 0) {
        return kFileError;
    }
    const long length = std::ftell(file.get());
    // Where a directory can be opened its length is the largest number there is.
    if (length <= 0 || length == LONG_MAX || std::fseek(file.get(), 0, SEEK_SET) != 0) {
        return kFileError;
    }
    const auto size = static_cast<std::size_t>(length);
    std::unique_ptr<char[]> buffer(new (std::nothrow) char[size]);
    if (!buffer) {
        return kNoMemory;
    }
    if (std::fread(buffer.get(), 1, size, file.get()) != size) {
        return kFileError;
    }
    try {
        if (!merge) {
            Clear();
        }
        buffers_.push_back(std::move(buffer));
        bytes_ = {buffers_.back().get(), size};
        const std::uint32_t result = Parse(bytes_, merge);
        if (result == kSuccess) {
            path_ = path;
            entriesModified_ = false;
            valuesModified_ = false;
        }
        return result;
    } catch (const std::bad_alloc&) {
        Clear();
        return kNoMemory;
    }
}

std::uint32_t IniFile::Parse(std::string_view text, bool merge) {
    bool replaced = false;
    Section* section = nullptr;  // the unnamed section is made when something lands in it
    LineSplitter lines(text);
    while (const std::optional<std::string_view> line = lines.Next()) {
        if (line->front() == '[') {
            const std::string_view name = SectionName(*line);
            section = &OpenSection(name);
            Tell({Line::Kind::kHeader, lines.Number(), *line, section->name, name, {}});
            continue;
        }
        const bool comment = line->front() == ';' || line->front() == '#';
        const std::size_t equals = line->find('=');
        if (!comment && equals == std::string_view::npos) {
            const std::size_t continued = section == nullptr ? 0 : ContinueEntry(*section, *line);
            Tell({Line::Kind::kContinuation,
                  lines.Number(),
                  *line,
                  section == nullptr ? std::string_view() : section->name,
                  {},
                  {},
                  continued});
            continue;
        }
        if (section == nullptr) {
            section = &OpenSection({});
        }
        if (comment) {
            Append(*section, {{}, *line, lines.Number()});
            Tell({Line::Kind::kComment, lines.Number(), *line, section->name, {}, {}});
            continue;
        }
        const Entry entry{util::TrimBlanks(line->substr(0, equals)),
                          util::TrimBlanks(line->substr(equals + 1)), lines.Number()};
        if (merge) {
            replaced = MergeEntry(*section, entry) || replaced;
        } else {
            Append(*section, entry);
        }
        Tell({Line::Kind::kEntry, entry.line, *line, section->name, entry.key, entry.value});
    }
    ending_ = lines.Ending();
    return replaced ? kValueReplaced : kSuccess;
}

void IniFile::Clear() {
    sections_.clear();
    *sectionIndex_ = NameIndex();
    texts_.clear();
    buffers_.clear();
    bytes_ = {};
    cursor_ = 0;
}

IniFile::Section& IniFile::OpenSection(std::string_view name) {
    if (Section* const found = FindSection(name)) {
        return *found;
    }
    sections_.push_back(std::make_unique<Section>());
    sections_.back()->name = name;
    return *sections_.back();
}

void IniFile::Append(Section& section, const Entry& entry) {
    constexpr std::size_t kFirstEntries = 8;  // spares a small section most reallocations
    if (section.entries.empty()) {
        section.entries.reserve(kFirstEntries);
    }
    section.entries.push_back(entry);
    section.previous = section.entries.size() - 1;
    section.continuedValue = nullptr;
}

std::size_t IniFile::ContinueEntry(Section& section, std::string_view text) {
    if (section.previous == Section::kNone) {
        return 0;
    }
    Entry& entry = section.entries[section.previous];
    if (section.continuedValue == nullptr) {
        texts_.emplace_back(entry.value);
        section.continuedValue = &texts_.back();
    }
    section.continuedValue->append(1, '\n').append(text);
    entry.value = *section.continuedValue;
    return entry.line;
}

bool IniFile::MergeEntry(Section& section, const Entry& entry) {
    const std::size_t position = FindEntry(section, entry.key);
    if (position == section.entries.size()) {
        Append(section, entry);
        entriesModified_ = true;
        return false;
    }
    section.previous = position;
    section.continuedValue = nullptr;
    if (util::NoCaseEqual(section.entries[position].value, entry.value)) {
        return false;
    }
    section.entries[position].value = entry.value;
    section.entries[position].line = entry.line;
    valuesModified_ = true;
    return true;
}

std::size_t IniFile::FindEntry(Section& section, std::string_view key) const {
    return section.index.Find(
        section.entries.size(), key,
        [&section](std::size_t position) { return section.entries[position].key; },
        [this](std::string_view left, std::string_view right) {
            return caseSensitiveKeys_ ? left == right : util::NoCaseEqual(left, right);
        });
}

IniFile::Section* IniFile::FindSection(std::string_view name) const {
    const std::size_t position = sectionIndex_->Find(
        sections_.size(), name, [this](std::size_t at) { return sections_[at]->name; },
        util::NoCaseEqual);
    return position == sections_.size() ? nullptr : sections_[position].get();
}

std::uint32_t IniFile::GetValue(std::string_view section, std::string_view key,
                                std::string& value) const {
    Section* const holder = FindSection(section);
    const Entry* const found = holder == nullptr ? nullptr : FindIn(*holder, key);
    if (found == nullptr) {
        return holder == nullptr ? kSectionNotFound : kKeyNotFound;
    }
    value = found->value;
    return kSuccess;
}

const IniFile::Entry* IniFile::Find(std::string_view section, std::string_view key) const {
    Section* const holder = FindSection(section);
    return holder == nullptr ? nullptr : FindIn(*holder, key);
}

const IniFile::Entry* IniFile::FindIn(Section& section, std::string_view key) const {
    const std::size_t position = FindEntry(section, key);
    return position == section.entries.size() ? nullptr : &section.entries[position];
}

std::uint32_t IniFile::GetFirstSection(std::string& name) {
    cursor_ = 0;
    if (sections_.empty()) {
        return kSectionNotFound;
    }
    name = sections_.front()->name;
    return kSuccess;
}

std::uint32_t IniFile::GetNextSection(std::string& name) {
    if (cursor_ + 1 >= sections_.size()) {
        return kSectionNotFound;
    }
    name = sections_[++cursor_]->name;
    return kSuccess;
}

const std::vector<IniFile::Entry>* IniFile::Entries(std::string_view section) const {
    const Section* const found = FindSection(section);
    return found == nullptr ? nullptr : &found->entries;
}
