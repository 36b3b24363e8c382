#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/check/KnownNames.h"
#include "host/check/SourceFile.h"
#include "toolbox/config/IniFile.h"

namespace host::check {

/// The entries that the module's look-ups find: the first of each key of each section.
class FirstEntries {
public:
    explicit FirstEntries(IniFile& file);

    /// Null when there is no such entry. Valid until the file is loaded again.
    const IniFile::Entry* Find(std::string_view section, std::string_view key) const;

private:
    static std::string Identity(std::string_view section, std::string_view key);

    std::unordered_map<std::string, const IniFile::Entry*> entries_;
};

/// One event that the module sends. Values that no name or address could have are cut.
struct SentEvent {
    std::uint32_t kind;
    std::uint32_t type;
    std::string value;
};

/// One look-up of the module, the text it holds afterwards and what it sends before the next one.
/// The module keeps one text for all look-ups; where a key is missing, the text is that of a key
/// found before.
struct LookUp {
    std::string key;  ///< that was asked for
    bool found = false;
    std::string_view text;       ///< in the file's own memory
    std::string_view source;     ///< the key whose text it is, as the file spells it
    std::size_t sourceLine = 0;  ///< its line
    std::vector<SentEvent> events;

    /// The values sent with events of that kind.
    std::vector<std::string> Values(std::uint32_t kind) const;
    bool Sends(std::uint32_t kind) const;
};

/// What the module does with one section.
struct SectionReading {
    std::string name;
    SectionRole role = SectionRole::kIgnored;
    std::vector<LookUp> lookUps;
    /// The module gives the file up in this section: what the last look-up yields is refused.
    bool refused = false;

    /// The first look-up of the key; null when the module does not ask for it.
    const LookUp* Find(std::string_view key) const;
    /// Whether an adapter section has the key without which the module sends nothing of it.
    bool HasDescription() const;
};

/// The sections that the module reads, in its order, each as if it were the file's only one (a
/// section that the module gives up in does not hide those after it). Nothing is deciphered: the
/// texts of the account are sent as "***". Valid until the file is loaded again.
std::vector<SectionReading> ReadAsTheModule(IniFile& file);

}  // namespace host::check
