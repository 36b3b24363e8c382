#include "host/reading/File.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <utility>

#include "host/reading/Following.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::reading {

namespace {

/// Whether the piece lies in that part of the memory.
bool IsWithin(std::string_view piece, const char* begin, std::size_t size) {
    constexpr std::less_equal<> kBefore;
    return piece.data() != nullptr && kBefore(begin, piece.data()) &&
           kBefore(piece.data() + piece.size(), begin + size);
}

bool CanBeOpened(const std::string& path) {
    return std::ifstream(path, std::ios::binary).is_open();
}

}  // namespace

bool LookUp::Sends(std::uint32_t kind) const {
    return std::ranges::find(events, kind, &Event::kind) != events.end();
}

const LookUp* Section::Find(std::string_view key) const {
    const auto found = std::ranges::find_if(
        lookUps, [key](const LookUp& lookUp) { return util::NoCaseEqual(lookUp.key, key); });
    return found == lookUps.end() ? nullptr : &*found;
}

bool Section::HasDescription() const {
    const LookUp* const description = Find(config::key::kDescription);
    return description != nullptr && description->found;
}

File File::Read(const std::string& path) {
    File file;
    file.ini_->ObserveLines([&file](const IniFile::Line& line) { file.lines_.push_back(line); });
    const std::uint32_t result = file.ini_->Load(path, false);
    file.ini_->ObserveLines({});
    if (result != IniFile::kSuccess) {
        const bool isEmpty = result == IniFile::kFileError && CanBeOpened(path);
        file.state_ = isEmpty ? State::kEmpty : State::kUnreadable;
        return file;
    }
    file.state_ = State::kRead;
    file.TakeLines();
    file.TakeSections();
    file.TakeContinuedValues();
    file.refusal_ = FollowModule(*file.ini_, file.sections_, [&file](std::size_t line) {
        return file.entriesByLine_.at(line);
    });
    return file;
}

void File::TakeLines() {
    const std::string_view bytes = Bytes();
    for (std::size_t start = 0; start < bytes.size();) {
        starts_.push_back(start);
        start = std::min(bytes.find('\n', start), bytes.size() - 1) + 1;
    }
}

void File::TakeSections() {
    std::string name;
    for (auto result = ini_->GetFirstSection(name); result == IniFile::kSuccess;
         result = ini_->GetNextSection(name)) {
        Section& section = sections_.emplace_back();
        section.name = name;
        section.role = RoleOf(name);
    }
    for (Section& section : sections_) {
        sectionsByName_.emplace(section.name, &section);
    }
    for (const IniFile::Line& line : lines_) {
        Section* const section =
            line.kind == IniFile::Line::Kind::kHeader ? sectionsByName_.at(line.section) : nullptr;
        if (section != nullptr && section->header.line == 0) {
            section->header = PlaceInBytes(line.name);
        }
    }
    for (Section& section : sections_) {
        TakeEntries(section);
    }
}

void File::TakeEntries(Section& section) {
    for (const IniFile::Entry& entry : *ini_->Entries(section.name)) {
        if (LineAt(entry.line)->kind == IniFile::Line::Kind::kEntry) {
            section.entries.push_back({entry.key, entry.value, PlaceInBytes(entry.key),
                                       PlaceInBytes(LineAt(entry.line)->value)});
        }
    }
    for (Entry& entry : section.entries) {
        entriesByLine_.emplace(entry.Line(), &entry);
        const IniFile::Entry& first = *ini_->Find(section.name, entry.key);
        if (first.line != entry.Line()) {
            entry.first = EntryAt(first.line);
        }
    }
}

void File::TakeContinuedValues() {
    for (const IniFile::Line& line : lines_) {
        const Entry* const entry = line.continued == 0 ? nullptr : EntryAt(line.continued);
        if (entry == nullptr) {
            continue;  // nothing, or a comment
        }
        std::vector<Share>& shares = continuedValues_[entry->value.data()];
        if (shares.empty()) {
            shares.push_back({0, LineAt(line.continued)->value});
        }
        const Share& before = shares.back();
        shares.push_back({before.offset + before.text.size() + 1, line.text});
    }
}

std::string_view File::Line(std::size_t number) const {
    const std::size_t start = starts_.at(number - 1);
    const std::string_view rest = Bytes().substr(start);
    return rest.substr(0, rest.find('\n'));
}

const IniFile::Line* File::LineAt(std::size_t number) const {
    const auto found = std::ranges::lower_bound(lines_, number, {}, &IniFile::Line::number);
    return found == lines_.end() || found->number != number ? nullptr : &*found;
}

const Section* File::Find(std::string_view section) const {
    const auto found = sectionsByName_.find(section);
    return found == sectionsByName_.end() ? nullptr : found->second;
}

const Entry* File::Find(std::string_view section, std::string_view key) const {
    const IniFile::Entry* const found = ini_->Find(section, key);
    return found == nullptr ? nullptr : EntryAt(found->line);
}

const Entry* File::EntryAt(std::size_t line) const {
    const auto found = entriesByLine_.find(line);
    return found == entriesByLine_.end() ? nullptr : found->second;
}

Place File::PlaceOf(std::string_view piece) const {
    if (IsWithin(piece, Bytes().data(), Bytes().size())) {
        return PlaceInBytes(piece);
    }
    auto value = continuedValues_.upper_bound(piece.data());
    if (value == continuedValues_.begin()) {
        return {};
    }
    const auto& [begin, shares] = *--value;
    if (!IsWithin(piece, begin, shares.back().offset + shares.back().text.size())) {
        return {};
    }
    const auto offset = static_cast<std::size_t>(piece.data() - begin);
    const Share& share = *--std::ranges::upper_bound(shares, offset, {}, &Share::offset);
    const std::size_t within = std::min(offset - share.offset, share.text.size());
    return PlaceInBytes(share.text.substr(within, piece.size()));
}

Place File::PlaceInBytes(std::string_view piece) const {
    const auto offset = static_cast<std::size_t>(piece.data() - Bytes().data());
    const auto line = std::ranges::upper_bound(starts_, offset) - starts_.begin();
    const std::size_t start = starts_[static_cast<std::size_t>(line) - 1];
    return {static_cast<std::size_t>(line), offset - start + 1, piece.size()};
}

}  // namespace host::reading
