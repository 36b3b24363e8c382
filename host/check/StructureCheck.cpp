#include "host/check/StructureCheck.h"

#include <algorithm>
#include <string>

#include "common/util/Strings.h"
#include "host/check/KnownNames.h"
#include "host/check/SectionCheck.h"
#include "host/reading/Secrets.h"

namespace host::check {

namespace {

using Kind = IniFile::Line::Kind;

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool IsAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

/// Of a character of UTF-8 that begins with such a byte; 0 where none does.
std::size_t LengthOfCharacter(char first) {
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0x80                   ? 1
           : byte >= 0xC2 && byte < 0xE0 ? 2
           : byte >= 0xE0 && byte < 0xF0 ? 3
           : byte >= 0xF0 && byte < 0xF5 ? 4
                                         : 0;
}

/// Whether there are bytes beyond ASCII, all of them in characters of UTF-8.
bool HasUtf8(std::string_view bytes) {
    const auto follows = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    };
    const bool any = !std::ranges::all_of(bytes, IsAscii);
    while (!bytes.empty()) {
        const std::size_t length = LengthOfCharacter(bytes.front());
        if (length == 0 || length > bytes.size() ||
            !std::ranges::all_of(bytes.substr(1, length - 1), follows)) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return any;
}

}  // namespace

bool StructureCheck::CheckEncoding() {
    const std::string_view bytes = file_.Bytes();
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        findings_.Error("utf-16", {1, 1, 2},
                        "the file is UTF-16: the module reads bytes and finds no section in it");
        return false;
    }
    if (bytes.starts_with(kUtf8Mark)) {
        const std::string_view rest = util::TrimBlanks(file_.Line(1).substr(kUtf8Mark.size()));
        const Place place{1, 1, kUtf8Mark.size()};
        if (rest.starts_with('[')) {
            findings_.Error("byte-order-mark", place,
                            "a byte-order mark: the module takes it for text and does not see the "
                            "header after it");
        } else {
            findings_.Warning("byte-order-mark", place,
                              "a byte-order mark: the module takes it for text and ignores this "
                              "line");
        }
    }
    return CheckBytes();
}

bool StructureCheck::CheckBytes() {
    const std::string_view bytes = file_.Bytes();
    const auto placeAt = [&](std::size_t offset, std::size_t length) {
        return file_.PlaceOf(bytes.substr(offset, length));
    };
    const std::size_t nul = bytes.find('\0');
    if (nul < 2 && bytes.size() > 1) {
        findings_.Error("utf-16", placeAt(nul, 1),
                        "the file is UTF-16: the module reads bytes and finds no section in it");
        return false;
    }
    const auto isBinary = [](unsigned char byte) {
        constexpr std::string_view kOfText = "\t\n\v\f\r\x1A";
        return byte < ' ' && kOfText.find(static_cast<char>(byte)) == std::string_view::npos;
    };
    const auto offset =
        static_cast<std::size_t>(std::ranges::find_if(bytes, isBinary) - bytes.begin());
    if (offset < bytes.size()) {
        findings_.Error(
            bytes[offset] == '\0' ? Code("nul-byte") : Code("binary"), placeAt(offset, 1),
            util::Format("byte 0x%02X at offset %llu: text files do not contain it, "
                         "and Windows would get it unchanged",
                         static_cast<unsigned>(static_cast<unsigned char>(bytes[offset])),
                         static_cast<unsigned long long>(offset)));
    }
    if (bytes.find('\n') == std::string_view::npos && bytes.find('\r') < bytes.size() - 1) {
        findings_.Error("line-ends", placeAt(bytes.find('\r'), 1),
                        "the lines end with a carriage return alone: the module sees a single "
                        "line and drops all after its first carriage return");
        return false;
    }
    return true;
}

/// Where UTF-8 is not said to be. One text that is no UTF-8 clears all others.
void StructureCheck::CheckForUtf8() {
    const std::string_view bytes = file_.Bytes();
    if (!HasUtf8(bytes) || bytes.starts_with(kUtf8Mark)) {
        return;
    }
    for (const IniFile::Line& line : file_.Lines()) {
        const auto at = static_cast<std::size_t>(std::ranges::find_if_not(line.text, IsAscii) -
                                                 line.text.begin());
        if (line.kind != Kind::kComment && at < line.text.size()) {
            findings_.Error("utf-8", file_.PlaceOf(line.text.substr(at, 1)),
                            "the file is UTF-8: the module reads it in the system code page and "
                            "takes each byte for a character; save it as ANSI");
        }
    }
}

void StructureCheck::CheckLines() {
    CheckForUtf8();
    for (std::size_t number = 1; number <= file_.LineCount(); ++number) {
        CheckCarriageReturn(number);
    }
    const std::vector<IniFile::Line>& lines = file_.Lines();
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const IniFile::Line& line = lines[at];
        if (line.kind == Kind::kEntry && line.section.empty()) {
            findings_.Warning("outside-sections", file_.PlaceOf(line.name),
                              "the key stands in no section: the module ignores it");
        }
        if (line.kind == Kind::kContinuation) {
            while (at + 1 < lines.size() && lines[at + 1].kind == Kind::kContinuation &&
                   lines[at + 1].number == lines[at].number + 1) {
                ++at;
            }
            CheckContinuations(line, lines[at].number);
        }
    }
}

void StructureCheck::CheckCarriageReturn(std::size_t number) {
    const std::string_view raw = file_.Line(number);
    const std::size_t carriageReturn = raw.find('\r');
    if (carriageReturn != std::string_view::npos &&
        raw.find_first_not_of("\r \t", carriageReturn) != std::string_view::npos) {
        findings_.Error("carriage-return", {number, carriageReturn + 1, 1},
                        "a carriage return within the line: the module drops the rest of it");
    }
}

void StructureCheck::CheckContinuations(const IniFile::Line& line, std::size_t last) {
    const Place place = file_.PlaceOf(line.text);
    const std::string lines = line.number == last ? "a line" : "lines up to " + LineText(last);
    const reading::Entry* const entry = file_.EntryAt(line.continued);
    if (entry == nullptr) {
        if (line.number != 1 || !line.text.starts_with(kUtf8Mark)) {
            findings_.Warning("no-equals-sign", place,
                              lines + " without \"=\": the module ignores it");
        }
        return;
    }
    // A secret's length is not shown either.
    const bool secret = reading::IsSecretKey(entry->key);
    findings_.Warning("no-equals-sign", secret ? Place{place.line, place.column, 1} : place,
                      lines +
                          " without \"=\": the module adds it, after a line feed, to the "
                          "value of " +
                          Quoted(entry->key) + " in " + LineText(entry->Line()));
}

void StructureCheck::CheckHeaders() {
    for (const IniFile::Line& line : file_.Lines()) {
        if (line.kind == Kind::kHeader) {
            CheckHeader(line);
        }
    }
}

void StructureCheck::CheckHeader(const IniFile::Line& line) {
    const std::size_t closing = line.text.find(']');
    const std::string_view behind = closing == std::string_view::npos
                                        ? std::string_view()
                                        : util::TrimBlanks(line.text.substr(closing + 1));
    if (closing == std::string_view::npos) {
        findings_.Warning("no-closing-bracket", file_.PlaceOf(line.text),
                          "no closing bracket: the module takes the whole line as the "
                          "section's name");
    } else if (!behind.empty() && behind.front() != ';' && behind.front() != '#') {
        findings_.Warning("behind-header", file_.PlaceOf(behind),
                          "the module ignores what follows the bracket");
    }
    const reading::Section& section = *file_.Find(line.section);
    if (section.header.line == line.number) {
        CheckSectionName(line.name);
    } else if (section.role == SectionRole::kAdapter) {
        findings_.Warning("repeated-section", file_.PlaceOf(line.name),
                          "the section continues that of " + LineText(section.header.line) +
                              ": the module makes one adapter of both");
    }
}

void StructureCheck::CheckSectionName(std::string_view name) {
    if (reading::RoleOf(name) != SectionRole::kIgnored) {
        return;
    }
    const Place place = file_.PlaceOf(name);
    const std::string nearest = NearestSection(name);
    const std::string ignored = "the module ignores the section " + Quoted(name);
    if (nearest.empty()) {
        findings_.Warning("unknown-section", place, ignored);
        return;
    }
    const bool caseOnly = util::NoCaseEqual(nearest, name);
    findings_.Error("unknown-section", place,
                    ignored + (caseOnly ? ": it reads the name with its case" : "") +
                        "; did you mean \"" + nearest + "\"?");
}

void StructureCheck::CheckKeys() {
    for (const reading::Section& section : file_.Sections()) {
        if (section.role != SectionRole::kIgnored) {
            for (const reading::Entry& entry : section.entries) {
                CheckEntry(section, entry);
            }
        }
    }
}

void StructureCheck::CheckEntry(const reading::Section& section, const reading::Entry& entry) {
    if (reading::TopicOf(section.role, entry.key)) {
        if (entry.first != nullptr) {
            findings_.Warning("repeated-key", entry.keyPlace,
                              Quoted(entry.key) + " stands in " + LineText(entry.first->Line()) +
                                  " already: the module takes that one and ignores this");
        } else if (!reading::IsSecretKey(entry.key)) {
            CheckValueText(file_.LineAt(entry.Line())->value);
        }
        return;
    }
    const std::string ignored = "the module ignores the key " + Quoted(entry.key);
    if (const std::optional<SectionRole> home = reading::HomeOf(entry.key)) {
        findings_.Error("misplaced-key", entry.keyPlace,
                        ignored + " here: it belongs in " + RoleName(*home));
        return;
    }
    const std::string nearest = NearestKey(section.role, entry.key);
    if (nearest.empty()) {
        findings_.Warning("unknown-key", entry.keyPlace, ignored);
    } else {
        findings_.Error("unknown-key", entry.keyPlace,
                        ignored + "; did you mean \"" + nearest + "\"?");
    }
}

void StructureCheck::CheckValueText(std::string_view value) {
    for (const std::string_view mark : {" ;", "\t;", " #", "\t#"}) {
        const std::size_t comment = value.find(mark);
        if (comment != std::string_view::npos) {
            findings_.Warning("comment-in-value", file_.PlaceOf(value.substr(comment + 1)),
                              "a comment cannot follow a value: the module takes this as a "
                              "part of it");
            break;
        }
    }
    if (value.size() > 1 && value.front() == '"' && value.back() == '"') {
        findings_.Warning("quoted-value", file_.PlaceOf(value),
                          "the module takes the quotes as a part of the value");
    }
    const std::size_t percent = value.find('%');
    if (percent != std::string_view::npos) {
        findings_.Warning("percent-sign", file_.PlaceOf(value.substr(percent, 1)),
                          "nothing expands what stands between \"%\": the module takes the text "
                          "as it is");
    }
}

}  // namespace host::check
