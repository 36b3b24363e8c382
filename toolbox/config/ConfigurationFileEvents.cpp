#include "toolbox/config/ConfigurationFileEvents.h"

#include <utility>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace Event = config::Event;
namespace key = config::key;

namespace {

std::string Numbered(std::string_view stem, std::int32_t number) {
    return std::string(stem) + util::IntToString(number);
}

}  // namespace

ConfigurationFileEvents::ConfigurationFileEvents(IniFile& file, Sink sink, MakeCipher makeCipher)
    : file_(file), sink_(std::move(sink)), makeCipher_(makeCipher) {}

bool ConfigurationFileEvents::SuppressesReboot() {
    return Find(key::kGlobal, key::kRebootAfterConfig) && util::NoCaseEqual(text_, "false");
}

void ConfigurationFileEvents::SendSections() {
    std::string section;
    for (std::uint32_t result = file_.GetFirstSection(section); result == IniFile::kSuccess;
         result = file_.GetNextSection(section)) {
        SendSection(section);
    }
}

ConfigurationFileEvents::SectionKind ConfigurationFileEvents::KindOf(std::string_view section) {
    if (section == key::kTcpIp || section.find(key::kNicEntry) != std::string_view::npos) {
        return SectionKind::kAdapter;
    }
    return section == key::kNetworking ? SectionKind::kNetworking : SectionKind::kIgnored;
}

void ConfigurationFileEvents::SendSection(std::string_view section) {
    switch (KindOf(section)) {
        case SectionKind::kAdapter:
            SendAdapter(section);
            break;
        case SectionKind::kNetworking:
            SendNetworking(section);
            break;
        case SectionKind::kIgnored:
            break;
    }
}

bool ConfigurationFileEvents::Find(std::string_view section, std::string_view key) {
    const IniFile::Entry* const found = file_.Find(section, key);
    if (found != nullptr) {
        text_ = found->value;
    }
    if (observer_) {
        observer_(section, key, found);
    }
    return found != nullptr;
}

void ConfigurationFileEvents::Send(Kind kind, Type type, std::string_view value) {
    sink_(kind, type, value);
}

void ConfigurationFileEvents::SendValue(Kind kind, std::string_view value) {
    Send(kind, Event::VALUE, value);
}

/// Sends every piece of the text between the commas, empty ones and the last one included.
void ConfigurationFileEvents::SendList(Kind kind) {
    for (const std::string_view item : util::SplitAt(text_, ',')) {
        SendValue(kind, item);
    }
}

/// The text as a count. Negative means none; without the upper bound one line of a file could keep
/// the agent busy for hours.
std::int32_t ConfigurationFileEvents::Count() const {
    const std::int32_t count = util::StringToInt(text_);
    if (count > kMaximumCount) {
        throw config::ConfigError("toolbox\\config\\Configure", "Count out of range", 88,
                                  config::ErrorKind::kCountOutOfRange);
    }
    return count;
}

void ConfigurationFileEvents::SendNetworking(std::string_view section) {
    // Destroyed, and the deciphering library with it, at the end of this section.
    const std::unique_ptr<sys::CryptoDll> cipher = makeCipher_();
    std::string user;
    std::string password;
    const util::SecretGuard eraseUser(user);
    const util::SecretGuard erasePassword(password);
    bool hasCredentials = false;
    if (Find(section, key::kDomainUsername) && !text_.empty()) {
        cipher->Decrypt(std::string(text_), user);
        hasCredentials = true;
    }
    if (Find(section, key::kDomainPassword) && !text_.empty()) {
        cipher->Decrypt(std::string(text_), password);
    }
    // They go to the command sent just before, so the join and the rename each get them.
    const auto sendCredentials = [&] {
        if (hasCredentials) {
            SendValue(Event::DOMAIN_USER, user);
            SendValue(Event::DOMAIN_PASSWORD, password);
        }
    };

    const bool workgroupChosen = SendMembership(section);
    if (Find(section, key::kDsOrganizationalUnit) && !workgroupChosen) {
        SendValue(Event::ORGANIZATIONAL_UNIT, text_);
    }
    sendCredentials();
    if (Find(section, key::kComputerName)) {
        SendValue(Event::COMPUTER_NAME, text_);
    }
    sendCredentials();
}

/// Returns whether the file names a workgroup. The literal one that stands for an empty domain does
/// not count: an organisational unit is still sent after it.
bool ConfigurationFileEvents::SendMembership(std::string_view section) {
    if (!Find(section, key::kWorkgroup)) {
        return false;
    }
    if (util::NoCaseEqual(text_, "True")) {
        if (!Find(section, key::kDomain)) {
            return false;
        }
        SendValue(Event::WORKGROUP, text_);
        return true;
    }
    if (!Find(section, key::kDnsDomain)) {
        return false;
    }
    if (!text_.empty()) {
        SendValue(Event::DOMAIN, text_);
    } else if (Find(section, key::kDomain)) {
        if (!text_.empty()) {
            SendValue(Event::DOMAIN, text_);
        } else {
            SendValue(Event::WORKGROUP, "WORKGROUP");
        }
    }
    return false;
}

void ConfigurationFileEvents::SendAdapter(std::string_view section) {
    // The one status of the section: set by "Description" and by each "DNS-Server" look-up.
    bool found = Find(section, key::kDescription);
    if (found) {
        Send(Event::NIC, Event::BEGIN, text_);
    }

    Find(section, key::kDhcp);
    if (found) {
        if (util::NoCaseEqual(text_, "true")) {
            SendValue(Event::DHCP, {});
        } else {
            SendStaticAddressing(section);
        }
    }

    Find(section, key::kDnsServerCount);
    if (found) {
        const std::int32_t count = Count();
        for (std::int32_t i = 0; i < count; ++i) {
            found = Find(section, Numbered(key::kDnsServer, i));
            if (found) {
                SendValue(Event::DNS_SERVER, text_);
            }
        }
    }

    Find(section, key::kDnsSuffixSearchOrder);
    if (found) {
        SendList(Event::DNS_SUFFIX);
    }

    Find(section, key::kStaticRouteCount);
    if (found) {
        SendRoutes(section);
    }
    // Sent also where no BEGIN was.
    Send(Event::NIC, Event::END);
}

void ConfigurationFileEvents::SendStaticAddressing(std::string_view section) {
    SendValue(Event::STATIC, {});
    Send(Event::IP_INTERFACE, Event::BEGIN);
    Find(section, key::kAddress);
    SendList(Event::IP_ADDRESS);
    Find(section, key::kNetmask);
    SendList(Event::SUBNET_MASK);
    Send(Event::IP_INTERFACE, Event::END);
    Find(section, key::kGateway);
    SendList(Event::GATEWAY);
}

void ConfigurationFileEvents::SendRoutes(std::string_view section) {
    const std::int32_t count = Count();
    if (count == 0) {
        Send(Event::STATIC_ROUTE, Event::BEGIN);
        Send(Event::STATIC_ROUTE, Event::END);
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        Send(Event::STATIC_ROUTE, Event::BEGIN);
        Find(section, Numbered(key::kRoute, i));
        SendRouteFields();
        Send(Event::STATIC_ROUTE, Event::END);
    }
}

void ConfigurationFileEvents::SendRouteFields() {
    static constexpr Kind kKinds[kRouteFields] = {Event::IP_ADDRESS, Event::SUBNET_MASK,
                                                  Event::ROUTE_GATEWAY, Event::ROUTE_FIELD4,
                                                  Event::ROUTE_METRIC};
    const RouteFields fields = SplitRoute(text_);
    for (std::size_t i = 0; i < fields.sent.size(); ++i) {
        SendValue(kKinds[i], fields.sent[i]);
    }
}

ConfigurationFileEvents::RouteFields ConfigurationFileEvents::SplitRoute(std::string_view text) {
    RouteFields fields;
    std::string_view rest = text;
    while (!text.starts_with(',') && fields.sent.size() < kRouteFields) {
        const std::size_t comma = rest.find(',');
        if (comma == std::string_view::npos) {
            break;
        }
        fields.sent.push_back(util::TrimBlanks(rest.substr(0, comma)));
        rest.remove_prefix(comma + 1);
    }
    fields.rest = util::TrimBlanks(rest);
    return fields;
}
