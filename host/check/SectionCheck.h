#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/check/Finding.h"
#include "host/check/Values.h"
#include "host/reading/File.h"

namespace host::check {

using reading::Entry;
using reading::LookUp;
using reading::SectionRole;

/// What the checks of the settings share: one section as the module reads it, and how findings
/// about its look-ups are worded and placed.
class SectionCheck {
public:
    SectionCheck(const reading::File& file, const reading::Section& section, Findings& findings)
        : file_(file), section_(section), findings_(findings) {}

protected:
    const reading::Section& Section() const noexcept { return section_; }
    const reading::File& File() const noexcept { return file_; }
    Findings& Found() noexcept { return findings_; }

    /// The section's header: where findings about a missing key stand.
    Place HeaderPlace() const noexcept { return section_.header; }
    /// The value that the look-up has found, or the header where the module goes by another key's.
    Place OwnValueOf(const LookUp& lookUp) const {
        return lookUp.found ? lookUp.source->valuePlace : HeaderPlace();
    }
    /// The same for a piece of the value.
    Place OwnPieceOf(const LookUp& lookUp, std::string_view piece) const {
        return lookUp.found ? file_.PlaceOf(piece) : HeaderPlace();
    }

    /// "there is no "Gateway": the module takes the text of "Netmask" in line 7"
    static std::string Reuse(const LookUp& lookUp);

    /// The section's own entry of that key; null when there is none.
    const Entry* Own(std::string_view key) const { return file_.Find(section_.name, key); }

    /// The section's entries that look-ups can find, in file order.
    std::vector<const Entry*> OwnEntries() const;
    /// Those that no look-up of the module has found.
    std::vector<const Entry*> UnreadEntries() const;

    /// Reports a fault of the whole value that the look-up found.
    void ReportValue(const LookUp& lookUp, const std::optional<ValueFault>& fault);

    /// Warns that the key, if it is there, is not used, and why.
    void ReportUnused(std::string_view key, const std::string& why);

    /// Reports what the module reads a count as. A count of another key's text that is less than
    /// `leastReported` has no effect worth a word; `whenZero` says what a count of 0 does.
    void ReportCount(const LookUp& count, std::int32_t leastReported, const std::string& whenZero);

    /// Warns of every entry `stem`, followed by a number, that the module does not ask for because
    /// the count ends before it.
    void ReportBeyondCount(std::string_view stem, const LookUp& count);

private:
    const reading::File& file_;
    const reading::Section& section_;
    Findings& findings_;
};

/// Whether the key is the stem followed by a number. Regards no case.
bool IsNumbered(std::string_view key, std::string_view stem);

/// "line 7"
std::string LineText(std::size_t number);

}  // namespace host::check
