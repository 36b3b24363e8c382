#include "host/reading/Settings.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "common/config/Event.h"
#include "common/ipc/IpAddress.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::reading {

namespace {

namespace Kinds = config::Event;
using Kind = Setting::Kind;

KeyPlace PlaceOfKey(const Section& section, const Entry& entry) {
    return {section.name, std::string(entry.key), entry.keyPlace, entry.valuePlace};
}

/// The events that commands come of: an adapter's end and the account make none.
bool MakesSomething(const Event& event) {
    const bool endsAdapter = event.kind == Kinds::NIC && event.type == Kinds::END;
    return !endsAdapter && event.kind != Kinds::DOMAIN_USER && event.kind != Kinds::DOMAIN_PASSWORD;
}

/// What the module makes of the look-ups of one topic in one section.
class SettingMaker {
public:
    SettingMaker(const File& file, const Section& section, Topic topic)
        : file_(file), section_(section) {
        for (const LookUp& lookUp : section.lookUps) {
            if (TopicOf(section.role, lookUp.key) == topic) {
                lookUps_.push_back(&lookUp);
            }
        }
        setting_.kind = KindOf(topic);
    }

    const std::vector<const LookUp*>& LookUps() const { return lookUps_; }

    /// None where nothing follows from the look-ups.
    std::optional<Setting> Make() {
        for (const LookUp* const lookUp : lookUps_) {
            if (setting_.kind == Kind::kAccount || setting_.kind == Kind::kRestartAnswer) {
                TakeText(*lookUp);
            } else if (std::ranges::any_of(lookUp->events, MakesSomething)) {
                TakeEvents(*lookUp);
            }
        }
        if (carrier_ == nullptr) {
            return std::nullopt;
        }
        if (setting_.kind == Kind::kAddresses) {
            PairAddresses();
        }
        setting_.at = PlaceOfKey(section_, *carrier_);
        for (const LookUp* const lookUp : lookUps_) {
            if (lookUp->found) {
                setting_.keys.push_back(PlaceOfKey(section_, *lookUp->source));
            }
        }
        return std::move(setting_);
    }

private:
    Kind KindOf(Topic topic) const {
        switch (topic) {
            case Topic::kRestartAnswer:
                return Kind::kRestartAnswer;
            case Topic::kAccount:
                return Kind::kAccount;
            case Topic::kMembership:
                return Sends(Kinds::DOMAIN) ? Kind::kDomain : Kind::kWorkgroup;
            case Topic::kUnit:
                return Kind::kUnit;
            case Topic::kComputerName:
                return Kind::kComputerName;
            case Topic::kAdapter:
                return Kind::kAdapter;
            case Topic::kAddressing:
                return Sends(Kinds::DHCP) ? Kind::kDhcp : Kind::kAddresses;
            case Topic::kGateways:
                return Kind::kGateways;
            case Topic::kDnsServers:
                return Kind::kDnsServers;
            case Topic::kDnsSuffixes:
                return Kind::kDnsSuffixes;
            case Topic::kRoutes:
                break;
        }
        return Kind::kRoutes;
    }

    bool Sends(std::uint32_t kind) const {
        return std::ranges::any_of(lookUps_,
                                   [kind](const LookUp* lookUp) { return lookUp->Sends(kind); });
    }

    /// The key carries the setting if none before it did, or none that brought a value.
    void Carry(const LookUp& lookUp) {
        if (setting_.wanted.empty() && addresses_.empty()) {
            carrier_ = lookUp.source;
        }
    }

    /// Of what is read and is no event.
    void TakeText(const LookUp& lookUp) {
        if (!lookUp.found || carrier_ != nullptr) {
            return;
        }
        Carry(lookUp);
        const bool secret = setting_.kind == Kind::kAccount;
        setting_.wanted.push_back(
            {secret ? "(enciphered)" : std::string(lookUp.Text()), lookUp.source->valuePlace});
    }

    void TakeEvents(const LookUp& lookUp) {
        if (!lookUp.found) {
            setting_.notes.push_back("there is no " + lookUp.key +
                                     ": the module goes by the text of " +
                                     std::string(lookUp.source->key) + " in line " +
                                     std::to_string(lookUp.source->Line()));
        }
        if (setting_.kind == Kind::kRoutes) {
            TakeRoute(lookUp);
            return;
        }
        for (const Event& event : lookUp.events) {
            if (MakesSomething(event)) {
                TakeEvent(lookUp, event);
            }
        }
    }

    void TakeEvent(const LookUp& lookUp, const Event& event) {
        // The module reads an address without the blanks around it; all else it takes as it stands.
        const std::string_view value =
            event.kind == Kinds::DNS_SUFFIX ? event.value : util::TrimBlanks(event.value);
        switch (event.kind) {
            case Kinds::STATIC:
            case Kinds::IP_INTERFACE:
                Carry(lookUp);
                break;
            case Kinds::IP_ADDRESS:
                Carry(lookUp);
                addresses_.push_back({AsRead(value), value});
                break;
            case Kinds::SUBNET_MASK:
                masks_.push_back({AsRead(value), value});
                break;
            case Kinds::DHCP:
                Add(lookUp, "on", value);
                break;
            case Kinds::GATEWAY:
                Add(lookUp, AsRead(value), value);
                break;
            case Kinds::DNS_SERVER:
                if (const std::string server = AsRead(value); server != "0.0.0.0") {
                    Add(lookUp, server, value);
                } else {
                    Carry(lookUp);
                    setting_.notes.emplace_back("the module passes over the server 0.0.0.0");
                }
                break;
            default:
                Add(lookUp, std::string(value), value);
        }
    }

    /// The address that the module makes of the text; the text where that is a host's name.
    std::string AsRead(std::string_view value) {
        if (!value.empty() && util::IsLetter(value.front())) {
            return std::string(value);
        }
        std::string address = ipc::IPv4Address(std::string(value)).ToString();
        if (address != value) {
            setting_.notes.push_back("\"" + std::string(value) + "\" is read as " + address);
        }
        return address;
    }

    void TakeRoute(const LookUp& lookUp) {
        std::vector<std::string> fields;
        std::string_view first;
        for (const Event& event : lookUp.events) {
            if (event.type == Kinds::VALUE) {
                first = fields.empty() ? event.value : first;
                fields.emplace_back(event.value);
            }
        }
        Carry(lookUp);
        if (fields.empty()) {
            return;
        }
        constexpr std::size_t kAll = ConfigurationFileEvents::kRouteFields;
        if (fields.size() < kAll) {
            setting_.notes.push_back("line " + std::to_string(lookUp.source->Line()) +
                                     ": only fields with a comma after them count, so the route "
                                     "lacks some");
        }
        fields.resize(kAll);
        Add(lookUp, RouteText(fields[0], fields[1], fields[2], util::StringToInt(fields[4])),
            first);
    }

    void PairAddresses() {
        for (std::size_t i = 0; i < std::max(addresses_.size(), masks_.size()); ++i) {
            const bool hasAddress = i < addresses_.size();
            std::string pair(hasAddress ? addresses_[i].text : "?");
            pair.append("/").append(i < masks_.size() ? masks_[i].text : "?");
            setting_.wanted.push_back(
                {std::move(pair), file_.PlaceOf((hasAddress ? addresses_ : masks_)[i].source)});
        }
    }

    void Add(const LookUp& lookUp, std::string text, std::string_view piece) {
        Carry(lookUp);
        const Place place = file_.PlaceOf(piece);
        setting_.wanted.push_back(
            {std::move(text), place.line == 0 ? lookUp.source->valuePlace : place});
    }

    const File& file_;
    const Section& section_;
    std::vector<const LookUp*> lookUps_;
    Setting setting_;
    const Entry* carrier_ = nullptr;
    /// An address as it is read, and where.
    struct Address {
        std::string text;
        std::string_view source;
    };
    std::vector<Address> addresses_;
    std::vector<Address> masks_;
};

/// The settings of a whole file.
class SettingsReader {
public:
    explicit SettingsReader(const File& file) : file_(file) {}

    std::vector<Setting> Read() {
        for (const Section& section : file_.Sections()) {
            const bool isRead = section.reached && section.role != SectionRole::kIgnored;
            isRead ? AddSection(section) : AddUnread(section);
        }
        for (Setting& setting : settings_) {
            std::ranges::sort(setting.keys, {}, [](const KeyPlace& key) { return key.place.line; });
        }
        std::ranges::stable_sort(settings_, {},
                                 [](const Setting& setting) { return setting.at.place.line; });
        return std::move(settings_);
    }

private:
    void AddSection(const Section& section) {
        const std::optional<std::size_t> adapter =
            section.HasDescription() ? std::optional(adapters_++) : std::nullopt;
        std::vector<Topic> topics;
        for (const LookUp& lookUp : section.lookUps) {
            const Topic topic = *TopicOf(section.role, lookUp.key);
            if (std::ranges::find(topics, topic) == topics.end()) {
                topics.push_back(topic);
            }
        }
        std::vector<const LookUp*> inVain;
        for (const Topic topic : topics) {
            SettingMaker maker(file_, section, topic);
            if (std::optional<Setting> setting = maker.Make()) {
                setting->order = settings_.size();
                setting->adapter = adapter;
                settings_.push_back(std::move(*setting));
            } else {
                std::ranges::copy_if(maker.LookUps(), std::back_inserter(inVain), &LookUp::found);
            }
        }
        for (const LookUp* const lookUp : inVain) {
            if (adapter && LeavesAlone(*lookUp)) {
                AddLeftAlone(section, *lookUp->source, *adapter);
                continue;
            }
            AddUnused(section, *lookUp->source, WhyNothingFollows(section, *lookUp));
        }
        for (const Entry& entry : section.entries) {
            if (!entry.key.empty() && !entry.found) {
                AddUnused(section, entry, WhyNotRead(section, entry));
            }
        }
    }

    /// A number of routes below 0, or no DNS server: the usual ways to say "as it is".
    static bool LeavesAlone(const LookUp& lookUp) {
        namespace key = config::key;
        return (util::NoCaseEqual(lookUp.key, key::kStaticRouteCount) &&
                util::StringToInt(std::string(lookUp.Text())) < 0) ||
               (util::NoCaseEqual(lookUp.key, key::kDnsServerCount) && lookUp.Text() == "0");
    }

    void AddLeftAlone(const Section& section, const Entry& entry, std::size_t adapter) {
        Setting& setting = settings_.emplace_back();
        setting.kind =
            *TopicOf(section.role, entry.key) == Topic::kRoutes ? Kind::kRoutes : Kind::kDnsServers;
        setting.order = settings_.size();
        setting.adapter = adapter;
        setting.at = PlaceOfKey(section, entry);
        setting.keys = {setting.at};
        setting.leftAlone = true;
    }

    static std::string WhyNothingFollows(const Section& section, const LookUp& lookUp) {
        if (section.role == SectionRole::kAdapter && !section.HasDescription()) {
            return "the section has no Description: the module makes no adapter of it";
        }
        if (section.cutShort && &lookUp == &section.lookUps.back()) {
            return "the module refuses the file for this count";
        }
        return "the module reads it and nothing follows from it here";
    }

    static std::string WhyNotRead(const Section& section, const Entry& entry) {
        if (entry.first != nullptr) {
            return "the key stands in line " + std::to_string(entry.first->Line()) +
                   " already, and the first one counts";
        }
        if (section.cutShort && TopicOf(section.role, entry.key)) {
            return "the module refuses the file before it comes to this key";
        }
        return "the module does not look for this key here";
    }

    void AddUnread(const Section& section) {
        Setting unread;
        unread.kind = Kind::kUnused;
        for (const Entry& entry : section.entries) {
            if (!entry.key.empty()) {
                unread.keys.push_back(PlaceOfKey(section, entry));
            }
        }
        if (unread.keys.empty()) {
            return;
        }
        unread.at = {section.name, "", unread.keys.front().place, {}};
        unread.notes = {section.reached ? "the module does not read this section"
                                        : "the module refuses the file before it comes to this "
                                          "section"};
        settings_.push_back(std::move(unread));
    }

    void AddUnused(const Section& section, const Entry& entry, std::string why) {
        Setting& unused = settings_.emplace_back();
        unused.kind = Kind::kUnused;
        unused.at = PlaceOfKey(section, entry);
        unused.keys = {unused.at};
        unused.notes = {std::move(why)};
    }

    const File& file_;
    std::vector<Setting> settings_;
    std::size_t adapters_ = 0;
};

}  // namespace

std::vector<std::string> WantedTexts(const Setting& setting) {
    std::vector<std::string> texts;
    for (const Value& value : setting.wanted) {
        texts.push_back(value.text);
    }
    return texts;
}

std::vector<Setting> SettingsOf(const File& file) {
    return SettingsReader(file).Read();
}

std::string RouteText(const std::string& destination, const std::string& mask,
                      const std::string& gateway, std::int32_t metric) {
    const auto orNothing = [](const std::string& text) { return text.empty() ? "?" : text; };
    return orNothing(destination) + " mask " + orNothing(mask) + " via " + orNothing(gateway) +
           " metric " + util::IntToString(metric);
}

}  // namespace host::reading
