#include "host/configure/Settings.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "host/configure/SettingNames.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/IniFile.h"

namespace host::configure {

namespace {

namespace Event = config::Event;
using Kind = Setting::Kind;

std::string Trimmed(std::string_view text) {
    return std::string(util::TrimBlanks(text));
}

/// Follows the module's look-ups and events through one file.
class SettingReader {
public:
    explicit SettingReader(IniFile& file) : file_(file) {}

    void OnLookUp(const std::string& section, std::string_view key, bool found);
    void OnEvent(std::uint32_t kind, std::uint32_t type, const std::string& value);
    /// The settings, with the keys that led to nothing.
    std::vector<Setting> Finish(bool refused);

private:
    std::optional<KeyPlace> Place(const std::string& section, std::string_view key) const;
    Setting& Current(Kind kind);
    void Attach(Setting& setting, bool isValue);
    void AddValue(Kind kind, std::string value);
    void OnNic(std::uint32_t type, const std::string& value);
    void OnInterfaceEnd();
    void OnRoute(std::uint32_t type);
    void CloseSection();
    void AddUnused(const KeyPlace& place, std::string note);
    void AddUnreadSection(const std::string& section, bool refused);

    IniFile& file_;
    std::vector<Setting> settings_;
    std::size_t sectionStart_ = 0;  // where the settings of the section being read begin
    std::string section_;
    std::optional<std::size_t> adapter_;
    std::size_t adapters_ = 0;
    std::vector<KeyPlace> pending_;  // found in this section and not attached to a setting yet
    std::set<std::size_t> readLines_;
    std::vector<std::string> readSections_;

    std::string askedKey_;
    bool askedFound_ = false;
    std::optional<KeyPlace> source_;  // whose text the module holds now

    bool inInterface_ = false;
    std::vector<std::string> addresses_;
    std::vector<std::string> masks_;
    std::vector<std::string> routeFields_;
};

std::optional<KeyPlace> SettingReader::Place(const std::string& section,
                                             std::string_view key) const {
    const std::vector<IniFile::Entry>* const entries = file_.Entries(section);
    if (entries == nullptr) {
        return std::nullopt;
    }
    const auto found = std::find_if(entries->begin(), entries->end(), [key](const auto& entry) {
        return !entry.key.empty() && util::NoCaseEqual(entry.key, key);
    });
    return found == entries->end()
               ? std::nullopt
               : std::optional(KeyPlace{section, std::string(found->key), found->line});
}

void SettingReader::OnLookUp(const std::string& section, std::string_view key, bool found) {
    if (section != section_) {
        CloseSection();
        section_ = section;
        readSections_.push_back(section);
    }
    askedKey_ = key;
    askedFound_ = found;
    const auto place = found ? Place(section, key) : std::nullopt;
    if (!place) {
        return;
    }
    source_ = place;
    readLines_.insert(place->line);
    if (IsAccountKey(key)) {
        Setting& account = Current(Kind::kAccount);
        account.keys.push_back(*place);
        account.at = account.keys.front();
        account.wanted = {"(enciphered)"};
    } else if (util::NoCaseEqual(key, "RebootAfterConfig")) {
        std::string value;
        file_.GetValue(section, key, value);
        Setting& answer = Current(Kind::kRestartAnswer);
        answer.keys = {*place};
        answer.at = *place;
        answer.wanted = {value};
    } else {
        pending_.push_back(*place);
    }
}

/// The setting of that kind in the section being read.
Setting& SettingReader::Current(Kind kind) {
    for (std::size_t i = sectionStart_; i < settings_.size(); ++i) {
        if (settings_[i].kind == kind) {
            return settings_[i];
        }
    }
    Setting& setting = settings_.emplace_back();
    setting.kind = kind;
    setting.order = settings_.size();
    setting.adapter = adapter_;
    return setting;
}

/// Gives the setting the keys that belong to it and were read since. Where the key that the module
/// asked for is missing, what it sends is the text of the key found before.
void SettingReader::Attach(Setting& setting, bool isValue) {
    const auto belongs = [&setting](const KeyPlace& place) {
        return LeadsTo(place.key, setting.kind);
    };
    std::copy_if(pending_.begin(), pending_.end(), std::back_inserter(setting.keys), belongs);
    std::erase_if(pending_, belongs);
    if (!source_) {
        return;
    }
    if (setting.at.line == 0 || (isValue && setting.wanted.empty())) {
        setting.at = *source_;
    }
    if (askedFound_) {
        return;
    }
    std::string note = "there is no " + askedKey_ + ": the module goes by the text of " +
                       source_->key + " in line " + std::to_string(source_->line);
    if (std::find(setting.notes.begin(), setting.notes.end(), note) == setting.notes.end()) {
        setting.notes.push_back(std::move(note));
    }
}

void SettingReader::AddValue(Kind kind, std::string value) {
    Setting& setting = Current(kind);
    Attach(setting, true);
    if (kind == Kind::kDnsServers && value == "0.0.0.0") {
        setting.notes.emplace_back("the module passes over the server 0.0.0.0");
        return;
    }
    setting.wanted.push_back(std::move(value));
}

void SettingReader::OnEvent(std::uint32_t kind, std::uint32_t type, const std::string& value) {
    switch (kind) {
        case Event::NIC:
            OnNic(type, value);
            break;
        case Event::DHCP:
            AddValue(Kind::kDhcp, "on");
            break;
        case Event::STATIC:
            Attach(Current(Kind::kAddresses), false);
            break;
        case Event::IP_INTERFACE:
            inInterface_ = type == Event::BEGIN;
            if (type == Event::END) {
                OnInterfaceEnd();
            }
            break;
        case Event::STATIC_ROUTE:
            OnRoute(type);
            break;
        case Event::IP_ADDRESS:
        case Event::SUBNET_MASK:
            if (inInterface_) {
                Attach(Current(Kind::kAddresses), kind == Event::IP_ADDRESS && addresses_.empty());
                (kind == Event::IP_ADDRESS ? addresses_ : masks_).push_back(Trimmed(value));
                break;
            }
            routeFields_.push_back(value);
            break;
        case Event::ROUTE_GATEWAY:
        case Event::ROUTE_FIELD4:
        case Event::ROUTE_METRIC:
            routeFields_.push_back(value);
            break;
        case Event::DOMAIN_USER:
        case Event::DOMAIN_PASSWORD:
            break;  // the account was noted when it was looked up
        default:
            if (const auto setting = KindOfEvent(kind)) {
                AddValue(*setting, Trimmed(value));
            }
    }
}

void SettingReader::OnNic(std::uint32_t type, const std::string& value) {
    if (type == Event::BEGIN) {
        adapter_ = adapters_++;
        AddValue(Kind::kAdapter, value);
        return;
    }
    if (!adapter_) {
        for (const KeyPlace& place : std::exchange(pending_, {})) {
            AddUnused(place, "the section has no Description: the module makes no adapter of it");
        }
    }
    CloseSection();
}

void SettingReader::OnInterfaceEnd() {
    Setting& setting = Current(Kind::kAddresses);
    for (std::size_t i = 0; i < std::max(addresses_.size(), masks_.size()); ++i) {
        const std::string address = i < addresses_.size() ? addresses_[i] : std::string("?");
        const std::string mask = i < masks_.size() ? masks_[i] : std::string("?");
        setting.wanted.push_back(address);
        setting.wanted.back().append("/").append(mask);
    }
    addresses_.clear();
    masks_.clear();
}

void SettingReader::OnRoute(std::uint32_t type) {
    Setting& setting = Current(Kind::kRoutes);
    if (type == Event::BEGIN) {
        Attach(setting, false);
        routeFields_.clear();
        return;
    }
    Attach(setting, true);
    if (routeFields_.empty()) {
        return;
    }
    if (routeFields_.size() < 5) {
        setting.notes.push_back("line " + std::to_string(source_ ? source_->line : 0) +
                                ": only fields with a comma behind them count, so that the route "
                                "lacks some");
    }
    routeFields_.resize(5);
    setting.wanted.push_back(RouteText(routeFields_[0], routeFields_[1], routeFields_[2],
                                       util::StringToInt(routeFields_[4])));
}

void SettingReader::CloseSection() {
    for (const KeyPlace& place : std::exchange(pending_, {})) {
        AddUnused(place, "the module reads it and nothing follows from it here");
    }
    sectionStart_ = settings_.size();
    adapter_.reset();
    source_.reset();
    section_.clear();
}

void SettingReader::AddUnused(const KeyPlace& place, std::string note) {
    Setting& unused = settings_.emplace_back();
    unused.kind = Kind::kUnused;
    unused.at = place;
    unused.keys = {place};
    unused.notes = {std::move(note)};
}

void SettingReader::AddUnreadSection(const std::string& section, bool refused) {
    Setting unread;
    unread.kind = Kind::kUnused;
    for (const IniFile::Entry& entry : *file_.Entries(section)) {
        if (!entry.key.empty()) {
            unread.keys.push_back({section, std::string(entry.key), entry.line});
        }
    }
    if (unread.keys.empty()) {
        return;
    }
    unread.at = {section, "", unread.keys.front().line};
    unread.notes = {refused ? "the module refuses the file before it comes to this section"
                            : "the module does not read this section"};
    settings_.push_back(std::move(unread));
}

std::vector<Setting> SettingReader::Finish(bool refused) {
    CloseSection();
    std::string section;
    for (auto result = file_.GetFirstSection(section); result == IniFile::kSuccess;
         result = file_.GetNextSection(section)) {
        const bool wasRead = std::any_of(
            readSections_.begin(), readSections_.end(),
            [&section](const std::string& name) { return util::NoCaseEqual(name, section); });
        if (!wasRead) {
            AddUnreadSection(section, refused);
            continue;
        }
        for (const IniFile::Entry& entry : *file_.Entries(section)) {
            if (entry.key.empty() || readLines_.contains(entry.line)) {
                continue;
            }
            const auto first = Place(section, entry.key);
            AddUnused({section, std::string(entry.key), entry.line},
                      first && first->line != entry.line
                          ? "the key stands in line " + std::to_string(first->line) +
                                " already, and the first one counts"
                          : "the module does not look for this key here");
        }
    }
    for (Setting& setting : settings_) {
        std::sort(setting.keys.begin(), setting.keys.end(),
                  [](const auto& left, const auto& right) { return left.line < right.line; });
    }
    std::stable_sort(settings_.begin(), settings_.end(), [](const auto& left, const auto& right) {
        return left.at.line < right.at.line;
    });
    return std::move(settings_);
}

}  // namespace

std::vector<Setting> ReadSettings(const std::string& path) {
    IniFile file;
    file.Load(path, false);
    SettingReader reader(file);
    const auto decipherNothing = [] {
        return [](const std::string&, std::string& plain) { plain = "***"; };
    };
    ConfigurationFileEvents events(
        file,
        [&reader](std::uint32_t kind, std::uint32_t type, const std::string& value) {
            reader.OnEvent(kind, type, value);
        },
        decipherNothing);
    events.ObserveLookUps([&reader](const std::string& section, std::string_view key, bool found) {
        reader.OnLookUp(section, key, found);
    });
    bool refused = false;
    try {
        events.SuppressesReboot();
        events.SendSections();
    } catch (const config::ConfigError&) {
        refused = true;  // the module's own run says why
    }
    return reader.Finish(refused);
}

}  // namespace host::configure
