#include "host/check/SectionCheck.h"

#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

std::string SectionCheck::Reuse(const LookUp& lookUp) {
    return "there is no " + Quoted(lookUp.key) + ": the module takes the text of " +
           Quoted(lookUp.source->key) + " in " + LineText(lookUp.source->Line());
}

void SectionCheck::ReportValue(const LookUp& lookUp, const std::optional<ValueFault>& fault) {
    if (fault) {
        findings_.Add({fault->severity, fault->code, OwnValueOf(lookUp), fault->message});
    }
}

void SectionCheck::ReportUnused(std::string_view key, const std::string& why) {
    if (const Entry* const entry = Own(key)) {
        findings_.Warning("unused-key", entry->keyPlace,
                          "the module ignores " + Quoted(entry->key) + ": " + why);
    }
}

std::vector<const Entry*> SectionCheck::OwnEntries() const {
    std::vector<const Entry*> own;
    for (const Entry& entry : section_.entries) {
        if (entry.first == nullptr) {
            own.push_back(&entry);
        }
    }
    return own;
}

std::vector<const Entry*> SectionCheck::UnreadEntries() const {
    std::vector<const Entry*> unread = OwnEntries();
    std::erase_if(unread, [](const Entry* entry) { return entry->found; });
    return unread;
}

void SectionCheck::ReportCount(const LookUp& count, std::int32_t leastReported,
                               const std::string& whenZero) {
    const std::int32_t number = util::StringToInt(count.Text());
    const std::string effect =
        " and reads the count " + std::to_string(number) + (number == 0 ? whenZero : "");
    if (number > ConfigurationFileEvents::kMaximumCount) {
        findings_.Error(
            "count-out-of-range", OwnValueOf(count),
            (count.found ? Quoted(count.Text()) : Reuse(count) + " as the count, which") +
                " is above 100000: the module gives the file up");
    } else if (!count.found && number >= leastReported) {
        findings_.Warning("reused-text", HeaderPlace(), Reuse(count) + effect);
    } else if (count.found && !IsWholeNumber(count.Text())) {
        findings_.Warning("odd-count", OwnValueOf(count),
                          "the module takes " + Quoted(count.Text()) + effect);
    }
}

void SectionCheck::ReportBeyondCount(std::string_view stem, const LookUp& count) {
    const std::int32_t number = util::StringToInt(count.Text());
    for (const Entry* const entry : UnreadEntries()) {
        if (IsNumbered(entry->key, stem) && reading::TopicOf(section_.role, entry->key)) {
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
