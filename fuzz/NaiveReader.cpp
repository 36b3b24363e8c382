#include "fuzz/NaiveReader.h"

namespace {

std::string Trimmed(std::string text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.erase(text.begin());
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.pop_back();
    }
    return text;
}

std::string Upper(std::string text) {
    for (char& byte : text) {
        if (byte >= 'a' && byte <= 'z') {
            byte = static_cast<char>(byte - 'a' + 'A');
        }
    }
    return text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines(1);
    for (const char byte : text) {
        if (byte == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += byte;
        }
    }
    for (std::string& line : lines) {
        line = Trimmed(line.substr(0, line.find('\r')));
    }
    return lines;
}

}  // namespace

bool NaiveReader::Parse(const std::string& text, bool merge) {
    if (!merge) {
        sections_.clear();
    }
    bool replaced = false;
    std::string current;  // the unnamed section, which is there once something is in it
    bool opened = false;
    for (const std::string& line : Lines(text)) {
        if (line.empty()) {
            continue;
        }
        if (line[0] == '[') {
            const std::string rest = line.substr(1);
            current = Trimmed(rest.substr(0, rest.find(']')));
            opened = true;
            Open(current);
        } else if (line[0] == ';' || line[0] == '#') {
            Section& section = Open(current);
            opened = true;
            section.entries.push_back({"", line});
            section.previous = section.entries.size() - 1;
        } else if (line.find('=') != std::string::npos) {
            const std::size_t equals = line.find('=');
            opened = true;
            replaced |=
                TakeKey(Open(current),
                        {Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1))}, merge);
        } else if (opened && Open(current).previous) {
            Section& section = Open(current);
            section.entries[*section.previous].value += "\n" + line;
        }
    }
    return !replaced;
}

bool NaiveReader::TakeKey(Section& section, const Entry& entry, bool merge) {
    const std::optional<std::size_t> position = merge ? Position(section, entry.key) : std::nullopt;
    if (!position) {
        section.entries.push_back(entry);
        section.previous = section.entries.size() - 1;
        return false;
    }
    section.previous = position;
    Entry& held = section.entries[*position];
    if (Upper(held.value) == Upper(entry.value)) {
        return false;
    }
    held.value = entry.value;
    return true;
}

const NaiveReader::Section* NaiveReader::Find(const std::string& name) const {
    for (const Section& section : sections_) {
        if (Upper(section.name) == Upper(name)) {
            return &section;
        }
    }
    return nullptr;
}

std::optional<std::string> NaiveReader::Value(const std::string& section,
                                              const std::string& key) const {
    const Section* const found = Find(section);
    const std::optional<std::size_t> position =
        found != nullptr ? Position(*found, key) : std::nullopt;
    return position ? std::optional(found->entries[*position].value) : std::nullopt;
}

std::optional<std::size_t> NaiveReader::Position(const Section& section,
                                                 const std::string& key) const {
    for (std::size_t i = 0; i < section.entries.size(); ++i) {
        const std::string& held = section.entries[i].key;
        if (caseSensitiveKeys_ ? held == key : Upper(held) == Upper(key)) {
            return i;
        }
    }
    return std::nullopt;
}

NaiveReader::Section& NaiveReader::Open(const std::string& name) {
    for (Section& section : sections_) {
        if (Upper(section.name) == Upper(name)) {
            return section;
        }
    }
    sections_.push_back({name, {}, std::nullopt});
    return sections_.back();
}
