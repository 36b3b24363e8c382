#include "host/reading/Secrets.h"

#include "common/util/Strings.h"
#include "host/Spelling.h"

namespace host::reading {

namespace {

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

/// Where a secret begins that stands in a line of another kind, after "password=" in a comment for
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

std::string ShownLine(const File& file, std::size_t number) {
    using Kind = IniFile::Line::Kind;
    const std::string_view raw = file.Line(number);
    const std::string_view visible = raw.substr(0, raw.find('\r'));
    const IniFile::Line* const line = file.LineAt(number);
    std::size_t secret = SecretWithin(visible);
    const auto maskFrom = [&](std::string_view piece) {
        secret = static_cast<std::size_t>(piece.data() - visible.data());
    };
    if (line != nullptr && line->kind == Kind::kEntry && IsSecretKey(line->name)) {
        maskFrom(line->value);
    } else if (line != nullptr && line->continued != 0) {
        const Entry* const entry = file.EntryAt(line->continued);
        if ((entry != nullptr && IsSecretKey(entry->key)) ||
            SecretWithin(file.Line(line->continued)) != std::string_view::npos) {
            maskFrom(line->text);
        }
    }
    if (secret >= visible.size()) {
        return std::string(visible);
    }
    return std::string(visible.substr(0, secret)) + "***";
}

}  // namespace host::reading
