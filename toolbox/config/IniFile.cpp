#include "toolbox/config/IniFile.h"

#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <utility>

#include "common/util/Strings.h"

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// The standard functions count in long, which has 32 bits under Windows.
int Seek(std::FILE* file, std::int64_t offset, int origin) noexcept {
#ifdef _WIN32
    return _fseeki64(file, offset, origin);
#else
    return fseeko(file, offset, origin);
#endif
}

std::int64_t Position(std::FILE* file) noexcept {
#ifdef _WIN32
    return _ftelli64(file);
#else
    return ftello(file);
#endif
}

/// Which names are the same, and an order in which those stand together.
struct NameOrder {
    bool caseSensitive = false;

    bool AreEqual(std::string_view left, std::string_view right) const noexcept {
        return caseSensitive ? left == right : util::NoCaseEqual(left, right);
    }
    bool operator()(std::string_view left, std::string_view right) const noexcept {
        return caseSensitive ? left < right : util::NoCaseLess(left, right);
    }
};

/// Whether the names can be equal: numbered ones differ in their last byte.
bool MayBeEqual(std::string_view left, std::string_view right) noexcept {
    return left.size() == right.size() &&
           (left.empty() || util::ToUpper(left.back()) == util::ToUpper(right.back()));
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

/// Finds names in a growing list of them; the first of equal names wins. A tree and no hash table:
/// there are no names on which it is slow.
class IniFile::NameIndex {
public:
    explicit NameIndex(bool caseSensitive = false) : positions_(NameOrder{caseSensitive}) {}

    /// The position of that name among the first `count`, or `count`. `nameAt` gives the name at a
    /// position. Names added since the last call are taken in first.
    template <typename NameAt>
    std::size_t Find(std::size_t count, std::string_view name, NameAt nameAt) {
        // Below this a scan is quicker.
        constexpr std::size_t kFew = 16;
        if (count <= kFew) {
            const NameOrder order = positions_.key_comp();
            std::size_t position = 0;
            while (position < count && !(MayBeEqual(nameAt(position), name) &&
                                         order.AreEqual(nameAt(position), name))) {
                ++position;
            }
            return position;
        }
        for (; indexed_ < count; ++indexed_) {
            positions_.try_emplace(nameAt(indexed_), indexed_);
        }
        const auto found = positions_.find(name);
        return found == positions_.end() ? count : found->second;
    }

private:
    std::map<std::string_view, std::size_t, NameOrder> positions_;
    std::size_t indexed_ = 0;
};

struct IniFile::Section {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    Section(std::string_view sectionName, bool caseSensitiveKeys)
        : name(sectionName), index(caseSensitiveKeys) {}

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
        Seek(file.get(), 0, SEEK_END) != 0) {
        return kFileError;
    }
    const std::int64_t length = Position(file.get());
    // Where a directory can be opened its length is the largest number there is.
    if (length <= 0 || length == std::numeric_limits<std::int64_t>::max() ||
        Seek(file.get(), 0, SEEK_SET) != 0) {
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
    sections_.push_back(std::make_unique<Section>(name, caseSensitiveKeys_));
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

std::size_t IniFile::FindEntry(Section& section, std::string_view key) {
    return section.index.Find(section.entries.size(), key, [&section](std::size_t position) {
        return section.entries[position].key;
    });
}

IniFile::Section* IniFile::FindSection(std::string_view name) const {
    const std::size_t position = sectionIndex_->Find(
        sections_.size(), name, [this](std::size_t at) { return sections_[at]->name; });
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

const IniFile::Entry* IniFile::FindIn(Section& section, std::string_view key) {
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
