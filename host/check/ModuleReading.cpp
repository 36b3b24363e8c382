#include "host/check/ModuleReading.h"

#include <algorithm>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::check {

namespace {

/// Longer than anything that Windows takes as a name.
constexpr std::size_t kLongestValue = 300;

/// Follows the module through the file.
class Recorder {
public:
    explicit Recorder(IniFile& file)
        : file_(file), firstEntries_(file), events_(file, Sink(), [] { return Decipher; }) {
        events_.ObserveLookUps([this](const std::string& section, std::string_view key,
                                      bool found) { OnLookUp(section, key, found); });
    }

    std::vector<SectionReading> Read() {
        Open("Global", SectionRole::kGlobal);
        events_.SuppressesReboot();
        std::string name;
        for (auto result = file_.GetFirstSection(name); result == IniFile::kSuccess;
             result = file_.GetNextSection(name)) {
            const SectionRole role = RoleOf(name);
            if (role == SectionRole::kNetworking || role == SectionRole::kAdapter) {
                Open(name, role);
                ReadSection(name);
            }
        }
        return std::move(sections_);
    }

private:
    static void Decipher(const std::string& /*enciphered*/, std::string& plain) { plain = "***"; }

    ConfigurationFileEvents::Sink Sink() {
        return [this](std::uint32_t kind, std::uint32_t type, const std::string& value) {
            if (!sections_.back().lookUps.empty()) {
                sections_.back().lookUps.back().events.push_back(
                    {kind, type, value.substr(0, kLongestValue)});
            }
        };
    }

    void Open(const std::string& name, SectionRole role) {
        SectionReading& section = sections_.emplace_back();
        section.name = name;
        section.role = role;
    }

    void ReadSection(const std::string& name) {
        try {
            events_.SendSection(name);
        } catch (const config::ConfigError&) {
            sections_.back().refused = true;
        }
    }

    void OnLookUp(const std::string& section, std::string_view key, bool found) {
        if (found) {
            const IniFile::Entry& entry = *firstEntries_.Find(section, key);
            held_.text = entry.value;
            held_.source = entry.key;
            held_.sourceLine = entry.line;
        }
        LookUp& lookUp = sections_.back().lookUps.emplace_back(held_);
        lookUp.key = key;
        lookUp.found = found;
    }

    IniFile& file_;
    FirstEntries firstEntries_;
    ConfigurationFileEvents events_;
    std::vector<SectionReading> sections_;
    LookUp held_;  // the text that the module holds, and where it is from
};

}  // namespace

FirstEntries::FirstEntries(IniFile& file) {
    std::string name;
    for (auto result = file.GetFirstSection(name); result == IniFile::kSuccess;
         result = file.GetNextSection(name)) {
        for (const IniFile::Entry& entry : *file.Entries(name)) {
            entries_.try_emplace(Identity(name, entry.key), &entry);
        }
    }
}

const IniFile::Entry* FirstEntries::Find(std::string_view section, std::string_view key) const {
    const auto found = entries_.find(Identity(section, key));
    return found == entries_.end() ? nullptr : found->second;
}

std::string FirstEntries::Identity(std::string_view section, std::string_view key) {
    // A section's name holds no closing bracket.
    std::string identity = std::string(section) + "]" + std::string(key);
    std::transform(identity.begin(), identity.end(), identity.begin(), util::ToUpper);
    return identity;
}

std::vector<std::string> LookUp::Values(std::uint32_t kind) const {
    std::vector<std::string> values;
    for (const SentEvent& event : events) {
        if (event.kind == kind && event.type == config::Event::VALUE) {
            values.push_back(event.value);
        }
    }
    return values;
}

bool LookUp::Sends(std::uint32_t kind) const {
    return std::any_of(events.begin(), events.end(),
                       [kind](const SentEvent& event) { return event.kind == kind; });
}

const LookUp* SectionReading::Find(std::string_view key) const {
    const auto found = std::find_if(lookUps.begin(), lookUps.end(), [key](const LookUp& lookUp) {
        return util::NoCaseEqual(lookUp.key, key);
    });
    return found == lookUps.end() ? nullptr : &*found;
}

bool SectionReading::HasDescription() const {
    const LookUp* const description = Find("Description");
    return description != nullptr && description->found;
}

std::vector<SectionReading> ReadAsTheModule(IniFile& file) {
    return Recorder(file).Read();
}

}  // namespace host::check
