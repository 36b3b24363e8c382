#include "host/check/StructureCheck.h"

#include <algorithm>
#include <unordered_map>

#include "common/util/Strings.h"
#include "host/check/SectionCheck.h"

namespace host::check {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), util::ToUpper);
    return upper;
}

}  // namespace

bool StructureCheck::CheckEncoding() {
    const std::string& bytes = source_.Bytes();
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
        findings_.Error("utf-16", {1, 1, 2},
                        "the file is UTF-16: the module reads bytes and finds no section in it");
        return false;
    }
    if (bytes.starts_with(kUtf8Mark)) {
        const SourceLine& line = source_.Line(1);
        const std::string_view rest = util::TrimBlanks(line.text.substr(kUtf8Mark.size()));
        const Place place{1, 1, kUtf8Mark.size()};
        if (rest.starts_with('[')) {
            findings_.Error("byte-order-mark", place,
                            "a byte-order mark: the module takes it for text and does not see the "
                            "header behind it");
        } else {
            findings_.Warning("byte-order-mark", place,
                              "a byte-order mark: the module takes it for text and ignores this "
                              "line");
        }
    }
    const std::size_t nul = bytes.find('\0');
    if (nul != std::string::npos) {
        const auto line = static_cast<std::size_t>(
            std::count(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nul), '\n'));
        const std::size_t start = nul == 0 ? 0 : bytes.rfind('\n', nul - 1) + 1;
        findings_.Warning("nul-byte", {line + 1, nul - start + 1, 1},
                          "a NUL byte: the module keeps it, and Windows reads a text up to it "
                          "only");
    }
    return true;
}

void StructureCheck::CheckLines() {
    for (std::size_t number = 1; number <= source_.LineCount(); ++number) {
        CheckCarriageReturn(number);
        const SourceLine& line = source_.Line(number);
        if (line.kind == LineKind::kEntry && line.section.empty()) {
            findings_.Warning("outside-sections", source_.KeyPlace(number),
                              "the key stands in no section: the module ignores it");
        }
        if (line.kind != LineKind::kContinuation) {
            continue;
        }
        std::size_t last = number;
        while (last < source_.LineCount() &&
               source_.Line(last + 1).kind == LineKind::kContinuation) {
            ++last;
        }
        CheckContinuations(number, last);
        number = last;
    }
}

void StructureCheck::CheckCarriageReturn(std::size_t number) {
    const std::string_view raw = source_.Line(number).raw;
    const std::size_t carriageReturn = raw.find('\r');
    if (carriageReturn != std::string_view::npos &&
        raw.find_first_not_of("\r \t", carriageReturn) != std::string_view::npos) {
        findings_.Warning("carriage-return", {number, carriageReturn + 1, 1},
                          "a carriage return within the line: the module drops the rest of it");
    }
}

void StructureCheck::CheckContinuations(std::size_t first, std::size_t last) {
    const SourceLine& line = source_.Line(first);
    const Place place = source_.PlaceOf(first, line.text);
    const std::string lines = first == last ? "a line" : "lines up to " + LineText(last);
    if (line.continuedLine == 0 || source_.Line(line.continuedLine).kind == LineKind::kComment) {
        if (first != 1 || !line.text.starts_with(kUtf8Mark)) {
            findings_.Warning("no-equals-sign", place,
                              lines + " without \"=\": the module ignores it");
        }
        return;
    }
    // How long a secret is concerns nobody.
    const bool secret = IsSecretKey(source_.Line(line.continuedLine).key);
    findings_.Warning("no-equals-sign", secret ? Place{place.line, place.column, 1} : place,
                      lines +
                          " without \"=\": the module adds it, behind a line feed, to the "
                          "value of " +
                          Quoted(source_.Line(line.continuedLine).key) + " in " +
                          LineText(line.continuedLine));
}

void StructureCheck::CheckHeaders() {
    std::unordered_map<std::string, std::size_t> seen;
    for (std::size_t number = 1; number <= source_.LineCount(); ++number) {
        const SourceLine& line = source_.Line(number);
        if (line.kind != LineKind::kHeader) {
            continue;
        }
        const std::size_t closing = line.text.find(']');
        const std::string_view behind = closing == std::string_view::npos
                                            ? std::string_view()
                                            : util::TrimBlanks(line.text.substr(closing + 1));
        if (closing == std::string_view::npos) {
            findings_.Warning("no-closing-bracket", source_.PlaceOf(number, line.text),
                              "no closing bracket: the module takes the whole line as the "
                              "section's name");
        } else if (!behind.empty() && behind.front() != ';' && behind.front() != '#') {
            findings_.Warning("behind-header", source_.PlaceOf(number, behind),
                              "the module ignores what stands behind the bracket");
        }
        const auto [first, added] = seen.try_emplace(UpperCase(line.name), number);
        if (added) {
            CheckSectionName(number);
        } else if (RoleOf(std::string(source_.Line(first->second).name)) == SectionRole::kAdapter) {
            findings_.Warning("repeated-section", source_.PlaceOf(number, line.name),
                              "the section continues that of " + LineText(first->second) +
                                  ": the module makes one adapter of both");
        }
    }
}

void StructureCheck::CheckSectionName(std::size_t number) {
    const SourceLine& line = source_.Line(number);
    if (RoleOf(std::string(line.name)) != SectionRole::kIgnored) {
        return;
    }
    const Place place = source_.PlaceOf(number, line.name);
    const std::string nearest = NearestSection(line.name);
    const std::string ignored = "the module ignores the section " + Quoted(line.name);
    if (nearest.empty()) {
        findings_.Warning("unknown-section", place, ignored);
        return;
    }
    const bool caseOnly = util::NoCaseEqual(nearest, line.name);
    findings_.Error("unknown-section", place,
                    ignored + (caseOnly ? ": it reads the name with its case" : "") +
                        "; did you mean \"" + nearest + "\"?");
}

void StructureCheck::CheckKeys(const FirstEntries& entries) {
    std::unordered_map<std::string, SectionRole> roles;  // a section is spelled as at first
    for (std::size_t number = 1; number <= source_.LineCount(); ++number) {
        const SourceLine& line = source_.Line(number);
        if (line.kind == LineKind::kHeader) {
            roles.try_emplace(UpperCase(line.name), RoleOf(std::string(line.name)));
        } else if (line.kind == LineKind::kEntry) {
            const auto role = roles.find(UpperCase(line.section));
            if (role != roles.end() && role->second != SectionRole::kIgnored) {
                CheckEntry(number, role->second, entries);
            }
        }
    }
}

void StructureCheck::CheckEntry(std::size_t number, SectionRole role, const FirstEntries& entries) {
    const SourceLine& line = source_.Line(number);
    const Place place = source_.KeyPlace(number);
    if (IsKnownKey(role, line.key)) {
        const IniFile::Entry* const first = entries.Find(line.section, line.key);
        if (first != nullptr && first->line != number) {
            findings_.Warning("repeated-key", place,
                              Quoted(line.key) + " stands in " + LineText(first->line) +
                                  " already: the module takes that one and ignores this");
        } else if (!IsSecretKey(line.key)) {
            CheckValueText(number);
        }
        return;
    }
    const std::string ignored = "the module ignores the key " + Quoted(line.key);
    if (const std::optional<SectionRole> home = HomeOf(line.key)) {
        findings_.Error("misplaced-key", place,
                        ignored + " here: it belongs into " + RoleName(*home));
        return;
    }
    const std::string nearest = NearestKey(role, line.key);
    if (nearest.empty()) {
        findings_.Warning("unknown-key", place, ignored);
    } else {
        findings_.Error("unknown-key", place, ignored + "; did you mean \"" + nearest + "\"?");
    }
}

void StructureCheck::CheckValueText(std::size_t number) {
    const std::string_view value = source_.Line(number).value;
    for (const std::string_view mark : {" ;", "\t;", " #", "\t#"}) {
        const std::size_t comment = value.find(mark);
        if (comment != std::string_view::npos) {
            findings_.Warning("comment-in-value",
                              source_.PlaceOf(number, value.substr(comment + 1)),
                              "no comment may stand behind a value: the module takes this as a "
                              "part of it");
            break;
        }
    }
    if (value.size() > 1 && value.front() == '"' && value.back() == '"') {
        findings_.Warning("quoted-value", source_.ValuePlace(number),
                          "the module takes the quotes as a part of the value");
    }
    const std::size_t percent = value.find('%');
    if (percent != std::string_view::npos) {
        findings_.Warning("percent-sign", source_.ValuePlace(number, percent, 1),
                          "nothing expands what stands between \"%\": the module takes the text "
                          "as it is");
    }
}

}  // namespace host::check
