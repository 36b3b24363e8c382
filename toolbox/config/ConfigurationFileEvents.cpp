#include "toolbox/config/ConfigurationFileEvents.h"

#include <utility>

#include "common/err/GeneralError.h"
#include "common/util/Strings.h"

namespace Event = config::Event;

ConfigurationFileEvents::ConfigurationFileEvents(IniFile& file, Sink sink,
                                                 OpenDecipher openDecipher)
    : file_(file), sink_(std::move(sink)), openDecipher_(std::move(openDecipher)) {}

bool ConfigurationFileEvents::SuppressesReboot() {
    return Find("Global", "RebootAfterConfig") && util::NoCaseEqual(text_, "false");
}

void ConfigurationFileEvents::SendSections() {
    std::string section;
    for (std::uint32_t result = file_.GetFirstSection(section); result == IniFile::kSuccess;
         result = file_.GetNextSection(section)) {
        SendSection(section);
    }
}

ConfigurationFileEvents::SectionKind ConfigurationFileEvents::KindOf(const std::string& section) {
    if (section == "TCP/IP" || section.find("NicEntry") != std::string::npos) {
        return SectionKind::kAdapter;
    }
    return section == "Networking" ? SectionKind::kNetworking : SectionKind::kIgnored;
}

void ConfigurationFileEvents::SendSection(const std::string& section) {
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

bool ConfigurationFileEvents::Find(const std::string& section, std::string_view key) {
    const bool found = file_.GetValue(section, key, text_) == IniFile::kSuccess;
    if (observer_) {
        observer_(section, key, found);
    }
    return found;
}

void ConfigurationFileEvents::Send(Kind kind, Type type, const std::string& value) {
    sink_(kind, type, value);
}

void ConfigurationFileEvents::SendValue(Kind kind, const std::string& value) {
    Send(kind, Event::VALUE, value);
}

/// Sends every piece of the text between the commas, empty ones and the last one included.
void ConfigurationFileEvents::SendList(Kind kind) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t comma = text_.find(',', start);
        SendValue(kind, text_.substr(start, comma - start));
        if (comma == std::string::npos) {
            return;
        }
        start = comma + 1;
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

void ConfigurationFileEvents::SendNetworking(const std::string& section) {
    // Destroyed, and the deciphering library with it, at the end of this section.
    const Decrypt decrypt = openDecipher_();
    std::string user;
    std::string password;
    const util::SecretGuard eraseUser(user);
    const util::SecretGuard erasePassword(password);
    bool hasCredentials = false;
    if (Find(section, "DomainUsername") && !text_.empty()) {
        decrypt(text_, user);
        hasCredentials = true;
    }
    if (Find(section, "DomainPassword") && !text_.empty()) {
        decrypt(text_, password);
    }
    // They go to the command sent just before, so the join and the rename each get them.
    const auto sendCredentials = [&] {
        if (hasCredentials) {
            SendValue(Event::DOMAIN_USER, user);
            SendValue(Event::DOMAIN_PASSWORD, password);
        }
    };

    const bool workgroupChosen = SendMembership(section);
    if (Find(section, "DSOrganizationalUnit") && !workgroupChosen) {
        SendValue(Event::ORGANIZATIONAL_UNIT, text_);
    }
    sendCredentials();
    if (Find(section, "ComputerName")) {
        SendValue(Event::COMPUTER_NAME, text_);
    }
    sendCredentials();
}

/// Returns whether the file names a workgroup. The literal one that stands for an empty domain does
/// not count: an organisational unit is still sent after it.
bool ConfigurationFileEvents::SendMembership(const std::string& section) {
    if (!Find(section, "Workgroup")) {
        return false;
    }
    if (util::NoCaseEqual(text_, "True")) {
        if (!Find(section, "Domain")) {
            return false;
        }
        SendValue(Event::WORKGROUP, text_);
        return true;
    }
    if (!Find(section, "DNSDomain")) {
        return false;
    }
    if (!text_.empty()) {
        SendValue(Event::DOMAIN, text_);
    } else if (Find(section, "Domain")) {
        if (!text_.empty()) {
            SendValue(Event::DOMAIN, text_);
        } else {
            SendValue(Event::WORKGROUP, "WORKGROUP");
        }
    }
    return false;
}

void ConfigurationFileEvents::SendAdapter(const std::string& section) {
    // The one status of the section: set by "Description" and by each "DNS-Server" look-up.
    bool found = Find(section, "Description");
    if (found) {
        Send(Event::NIC, Event::BEGIN, text_);
    }

    Find(section, "DHCP");
    if (found) {
        if (util::NoCaseEqual(text_, "true")) {
            SendValue(Event::DHCP, {});
        } else {
            SendStaticAddressing(section);
        }
    }

    Find(section, "DNS-Server-Count");
    if (found) {
        const std::int32_t count = Count();
        for (std::int32_t i = 0; i < count; ++i) {
            found = Find(section, "DNS-Server" + util::IntToString(i));
            if (found) {
                SendValue(Event::DNS_SERVER, text_);
            }
        }
    }

    Find(section, "DNS-SuffixSearchOrder");
    if (found) {
        SendList(Event::DNS_SUFFIX);
    }

    Find(section, "Static-Route-Count");
    if (found) {
        SendRoutes(section);
    }
    // Sent also where no BEGIN was.
    Send(Event::NIC, Event::END);
}

void ConfigurationFileEvents::SendStaticAddressing(const std::string& section) {
    SendValue(Event::STATIC, {});
    Send(Event::IP_INTERFACE, Event::BEGIN);
    Find(section, "Address");
    SendList(Event::IP_ADDRESS);
    Find(section, "Netmask");
    SendList(Event::SUBNET_MASK);
    Send(Event::IP_INTERFACE, Event::END);
    Find(section, "Gateway");
    SendList(Event::GATEWAY);
}

void ConfigurationFileEvents::SendRoutes(const std::string& section) {
    const std::int32_t count = Count();
    if (count == 0) {
        Send(Event::STATIC_ROUTE, Event::BEGIN);
        Send(Event::STATIC_ROUTE, Event::END);
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        Send(Event::STATIC_ROUTE, Event::BEGIN);
        Find(section, "Route" + util::IntToString(i));
        SendRouteFields();
        Send(Event::STATIC_ROUTE, Event::END);
    }
}

/// Sends the pieces of the text that a comma follows, five at most; none of a text that begins with
/// a comma.
void ConfigurationFileEvents::SendRouteFields() {
    if (text_.starts_with(',')) {
        return;
    }
    std::size_t start = 0;
    for (const Kind kind : {Event::IP_ADDRESS, Event::SUBNET_MASK, Event::ROUTE_GATEWAY,
                            Event::ROUTE_FIELD4, Event::ROUTE_METRIC}) {
        const std::size_t comma = text_.find(',', start);
        if (comma == std::string::npos) {
            return;
        }
        const std::string_view piece = std::string_view(text_).substr(start, comma - start);
        SendValue(kind, std::string(util::TrimBlanks(piece)));
        start = comma + 1;
    }
}
