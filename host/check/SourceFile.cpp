#include "host/check/SourceFile.h"

#include <fstream>
#include <iterator>

#include "common/util/Strings.h"
#include "host/check/KnownNames.h"

namespace host::check {

namespace {

void Classify(SourceLine& line) {
    if (line.text.empty()) {
        return;
    }
    const std::size_t equals = line.text.find('=');
    switch (line.text.front()) {
        case '[':
            line.kind = LineKind::kHeader;
            line.name = line.text.substr(1);
            line.name = util::TrimBlanks(line.name.substr(0, line.name.find(']')));
            return;
        case ';':
        case '#':
            line.kind = LineKind::kComment;
            return;
        default:
            if (equals == std::string_view::npos) {
                line.kind = LineKind::kContinuation;
                return;
            }
            line.kind = LineKind::kEntry;
            line.key = util::TrimBlanks(line.text.substr(0, equals));
            line.value = util::TrimBlanks(line.text.substr(equals + 1));
    }
}

constexpr std::size_t kLongestKey = 64;

/// Letters alone, in upper case: how people tell keys apart.
std::string Letters(std::string_view text) {
    std::string letters;
    for (const char character : text) {
        if (util::IsLetter(character)) {
            letters += util::ToUpper(character);
        }
    }
    return letters;
}

}  // namespace

bool IsSecretKey(std::string_view key) {
    const std::string letters = Letters(key.substr(0, kLongestKey));
    for (const std::string_view word : {"PASSWORD", "PASSWD", "PASSWORT", "USER"}) {
        if (letters.find(word) != std::string::npos) {
            return true;
        }
    }
    constexpr std::size_t kNear = 4;
    return EditDistance(letters, "DOMAINPASSWORD") <= kNear ||
           EditDistance(letters, "DOMAINUSERNAME") <= kNear;
}

namespace {

/// Where a secret begins that stands in a line of another kind, behind "password=" in a comment for
/// example.
std::size_t SecretWithin(std::string_view text) {
    for (std::size_t equals = text.find('='); equals != std::string_view::npos;
         equals = text.find('=', equals + 1)) {
        // No key is longer, and a line may be long.
        const std::size_t start = equals > kLongestKey ? equals - kLongestKey : 0;
        const std::string_view before = util::TrimBlanks(text.substr(start, equals - start));
        const std::size_t word = before.find_last_of(" \t;#]");
        if (IsSecretKey(before.substr(word == std::string_view::npos ? 0 : word + 1))) {
            return equals + 1;
        }
    }
    return std::string_view::npos;
}

}  // namespace

bool SourceFile::Load(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return false;
    }
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    TakeApart();
    return true;
}

void SourceFile::TakeApart() {
    std::string_view rest = bytes_;
    std::string_view section;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        SourceLine& line = lines_.emplace_back();
        line.raw = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        line.text = util::TrimBlanks(line.raw.substr(0, line.raw.find('\r')));
        Classify(line);
        if (line.kind == LineKind::kBlank) {
            continue;
        }
        if (line.kind == LineKind::kHeader) {
            section = line.name;
        }
        line.section = section;
        Section& place = sections_[section];
        if (line.kind == LineKind::kHeader && place.header == 0) {
            place.header = lines_.size();
        } else if (line.kind == LineKind::kContinuation) {
            line.continuedLine = place.last;
        } else if (line.kind == LineKind::kEntry || line.kind == LineKind::kComment) {
            place.last = lines_.size();
            if (line.kind == LineKind::kEntry) {
                place.entries.push_back(place.last);
            }
        }
    }
}

std::size_t SourceFile::NoCaseHash::operator()(std::string_view text) const {
    std::size_t hash = 0;
    for (const char character : text) {
        hash = hash * 31 + static_cast<unsigned char>(util::ToUpper(character));
    }
    return hash;
}

bool SourceFile::NoCaseEqualTo::operator()(std::string_view left, std::string_view right) const {
    return util::NoCaseEqual(left, right);
}

Place SourceFile::HeaderOf(std::string_view section) const {
    const auto found = sections_.find(section);
    if (found == sections_.end() || found->second.header == 0) {
        return {};
    }
    return PlaceOf(found->second.header, Line(found->second.header).name);
}

std::vector<std::size_t> SourceFile::EntriesOf(std::string_view section) const {
    const auto found = sections_.find(section);
    return found == sections_.end() ? std::vector<std::size_t>() : found->second.entries;
}

Place SourceFile::PlaceOf(std::size_t number, std::string_view piece) const {
    const std::string_view raw = Line(number).raw;
    return {number, static_cast<std::size_t>(piece.data() - raw.data()) + 1, piece.size()};
}

Place SourceFile::ValuePlace(std::size_t number, std::size_t offset, std::size_t length) const {
    const std::string_view value = Line(number).value;
    return offset + length <= value.size() ? PlaceOf(number, value.substr(offset, length))
                                           : PlaceOf(number, value);
}

Place SourceFile::ValuePlace(std::size_t number) const {
    return PlaceOf(number, Line(number).value);
}

std::string SourceFile::Shown(std::size_t number) const {
    const SourceLine& line = Line(number);
    const std::string_view visible = line.raw.substr(0, line.raw.find('\r'));
    std::size_t secret = SecretWithin(visible);
    if (line.kind == LineKind::kEntry && IsSecretKey(line.key)) {
        secret = static_cast<std::size_t>(line.value.data() - visible.data());
    } else if (line.kind == LineKind::kContinuation && line.continuedLine != 0) {
        const SourceLine& entry = Line(line.continuedLine);
        if (IsSecretKey(entry.key) || SecretWithin(entry.raw) != std::string_view::npos) {
            secret = static_cast<std::size_t>(line.text.data() - visible.data());
        }
    }
    if (secret >= visible.size()) {
        return std::string(visible);
    }
    return std::string(visible.substr(0, secret)) + "***";
}

}  // namespace host::check
