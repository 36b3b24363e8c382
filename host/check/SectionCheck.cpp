#include "host/check/SectionCheck.h"

#include <unordered_set>

#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

SectionCheck::SectionCheck(const SectionReading& reading, const SourceFile& source,
                           const FirstEntries& entries, Findings& findings)
    : reading_(reading),
      source_(source),
      entries_(entries),
      findings_(findings),
      header_(source.HeaderOf(reading.name)) {}

std::string SectionCheck::Reuse(const LookUp& lookUp) {
    return "there is no " + Quoted(lookUp.key) + ": the module takes the text of " +
           Quoted(lookUp.source) + " in " + LineText(lookUp.sourceLine);
}

void SectionCheck::ReportValue(const LookUp& lookUp, const std::optional<ValueFault>& fault) {
    if (fault) {
        findings_.Add({fault->severity, fault->code, ValueOf(lookUp), fault->message});
    }
}

void SectionCheck::ReportUnused(std::string_view key, const std::string& why) {
    if (const IniFile::Entry* const entry = Own(key)) {
        findings_.Warning("unused-key", source_.KeyPlace(entry->line),
                          "the module ignores " + Quoted(entry->key) + ": " + why);
    }
}

std::vector<const IniFile::Entry*> SectionCheck::OwnEntries() const {
    std::vector<const IniFile::Entry*> own;
    for (const std::size_t number : source_.EntriesOf(reading_.name)) {
        const IniFile::Entry* const entry = Own(source_.Line(number).key);
        if (entry != nullptr && entry->line == number) {
            own.push_back(entry);
        }
    }
    return own;
}

std::vector<const IniFile::Entry*> SectionCheck::UnreadEntries() const {
    std::unordered_set<std::size_t> read;
    for (const LookUp& lookUp : reading_.lookUps) {
        if (lookUp.found) {
            read.insert(lookUp.sourceLine);
        }
    }
    std::vector<const IniFile::Entry*> unread = OwnEntries();
    std::erase_if(unread, [&read](const auto* entry) { return read.contains(entry->line); });
    return unread;
}

void SectionCheck::ReportCount(const LookUp& count, std::int32_t leastReported,
                               const std::string& whenZero) {
    const std::int32_t number = util::StringToInt(std::string(count.text));
    const std::string effect =
        " and reads the count " + std::to_string(number) + (number == 0 ? whenZero : "");
    if (number > ConfigurationFileEvents::kMaximumCount) {
        findings_.Error("count-out-of-range", OwnValueOf(count),
                        (count.found ? Quoted(count.text) : Reuse(count) + " as the count, which") +
                            " is above 100000: the module gives the file up");
    } else if (!count.found && number >= leastReported) {
        findings_.Warning("reused-text", header_, Reuse(count) + effect);
    } else if (count.found && !IsWholeNumber(count.text)) {
        findings_.Warning("odd-count", ValueOf(count),
                          "the module takes " + Quoted(count.text) + effect);
    }
}

void SectionCheck::ReportBeyondCount(std::string_view stem, const LookUp& count) {
    const std::int32_t number = util::StringToInt(std::string(count.text));
    for (const IniFile::Entry* const entry : UnreadEntries()) {
        if (IsNumbered(entry->key, stem) && IsKnownKey(SectionRole::kAdapter, entry->key)) {
            ReportUnused(entry->key, Quoted(count.key) + " is " + std::to_string(number));
        }
    }
}

bool IsNumbered(std::string_view key, std::string_view stem) {
    return key.size() > stem.size() && util::NoCaseEqual(key.substr(0, stem.size()), stem) &&
           key.find_first_not_of("0123456789", stem.size()) == std::string_view::npos;
}

std::string LineText(std::size_t number) {
    return "line " + std::to_string(number);
}

}  // namespace host::check
