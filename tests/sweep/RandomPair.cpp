#include "tests/sweep/RandomPair.h"

#include <algorithm>
#include <set>
#include <utility>

#include "common/config/Event.h"
#include "common/err/GeneralError.h"
#include "machine/Cipher.h"
#include "tests/cases/CaseFile.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/IniFile.h"

namespace sweep {

using machine::Adapter;
using machine::TextList;

TextList Random::Some(TextList texts, std::uint64_t most) {
    std::shuffle(texts.begin(), texts.end(), engine_);
    texts.resize(std::min<std::uint64_t>(Below(most + 1), texts.size()));
    return texts;
}

namespace {

const TextList names = {"PC1", "PC9", "pc9", "SALES-PC", "A-NAME-THAT-IS-TOO-LONG", "bad name"};
const TextList suffixes = {"corp.example", "lab.example", "CORP.example", "example"};
const TextList units = {"East/Sales", "West", "OU=Support,OU=East", "North", ""};

std::string Host(std::uint64_t network, std::uint64_t number) {
    return "10.0." + std::to_string(network) + "." + std::to_string(number);
}

TextList Hosts(std::uint64_t network) {
    TextList hosts;
    for (std::uint64_t number = 1; number <= 6; ++number) {
        hosts.push_back(Host(network, number));
    }
    return hosts;
}

std::string JoinTexts(const TextList& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        joined += (joined.empty() ? "" : ",") + text;
    }
    return joined;
}

Adapter RandomAdapter(Random& random, std::uint32_t index) {
    Adapter adapter;
    adapter.index = index;
    adapter.connectionName = "Ethernet " + std::to_string(index);
    adapter.settingId = "{00000000-0000-0000-0000-00000000000" + std::to_string(index) + "}";
    const bool isPci = random.Chance(80);
    adapter.pnpDeviceId =
        (isPci ? "PCI\\VEN_8086&DEV_100E\\" : "ROOT\\NET\\") + std::to_string(index);
    adapter.pciLocation = "PCI bus " + std::to_string(index) + ", device 0, function 0";
    adapter.caption = "[0000000" + std::to_string(index) + "] Example";
    adapter.manufacturer = "Example";
    adapter.adapterType = "Ethernet 802.3";
    adapter.macAddress = "02:00:00:00:00:0" + std::to_string(index);
    adapter.ipEnabled = random.Chance(90);
    adapter.dnsDomain = "";
    adapter.dnsHostName = "PC1";
    adapter.dhcpLease = machine::DhcpLease{
        {Host(index, 50)}, {"255.255.255.0"}, {Host(index, 1)}, random.Some(Hosts(index), 2), {}};
    adapter.dhcpEnabled = random.Chance(50);
    adapter.staticDns = random.Some(Hosts(index), 2);
    adapter.dnsServers = adapter.staticDns;
    if (*adapter.dhcpEnabled) {
        adapter.ipAddress = adapter.dhcpLease->ipAddress;
        adapter.ipSubnet = adapter.dhcpLease->ipSubnet;
        adapter.gateways = adapter.dhcpLease->gateways;
        if (adapter.staticDns.empty()) {
            adapter.dnsServers = adapter.dhcpLease->dnsServers;
        }
    } else {
        adapter.ipAddress = TextList{Host(index, 2 + random.Below(3))};
        adapter.ipSubnet = TextList{"255.255.255.0"};
        adapter.gateways = random.Some(Hosts(index), 2);
    }
    return adapter;
}

std::vector<machine::PersistedRoute> RandomRoutes(Random& random) {
    std::vector<machine::PersistedRoute> routes;
    for (const std::string& destination :
         random.Some({"10.20.0.0", "10.30.0.0", "10.40.0.0", "0.0.0.0"}, 4)) {
        const std::string mask = destination == "0.0.0.0" ? destination : "255.255.0.0";
        for (const std::string& gateway : random.Some({Host(1, 1), Host(2, 1)}, 2)) {
            routes.push_back(
                {destination, mask, gateway, static_cast<std::int32_t>(1 + random.Below(3))});
        }
    }
    return routes;
}

/// A line of a section, left out now and then.
std::string Line(Random& random, const std::string& key, const std::string& value) {
    return random.Chance(90) ? key + "=" + value + "\n" : "";
}

std::string RandomNetworking(Random& random) {
    std::string text = "[Networking]\n";
    if (random.Chance(80)) {
        text += Line(random, "DomainUsername", machine::Encipher("joiner"));
        text += Line(random, "DomainPassword",
                     machine::Encipher(random.Chance(90) ? "Join-Me-1" : "wrong"));
    }
    if (random.Chance(70)) {
        text += Line(random, "Workgroup", random.Pick({"True", "False", "true", "no"}));
        text +=
            Line(random, "Domain", random.Pick({"SALES", "WORKGROUP", "CORP", "LAB", "", "a=b"}));
        text += Line(random, "DNSDomain", random.Pick({"corp.example", "LAB.example", "none", ""}));
    }
    if (random.Chance(50)) {
        text += Line(random, "DSOrganizationalUnit", random.Pick(units));
    }
    if (random.Chance(50)) {
        text += Line(random, "ComputerName", random.Pick(names));
    }
    return text;
}

std::string RandomRoute(Random& random) {
    return random.Pick({"10.20.0.0", "10.30.0.0", "10.50.0.0", "0.0.0.0"}) + "," +
           random.Pick({"255.255.0.0", "255.255.0.0", "255.255.0.0", "0.0.0.0"}) + "," +
           random.Pick({Host(1, 1), Host(2, 1)}) + ",," + random.Pick({"1", "2", "2", "x"}) +
           (random.Chance(90) ? "," : "");
}

std::string RandomAdapterSection(Random& random, const std::string& name) {
    const std::uint64_t network = 1 + random.Below(3);
    std::string text = "[" + name + "]\n";
    text += Line(random, "Description", random.Pick({"Office", "True"}));
    text += Line(random, "DHCP", random.Pick({"true", "TRUE", "false", "no"}));
    const TextList addresses = random.Some(Hosts(network), 2);
    text += Line(random, "Address", JoinTexts(addresses));
    text += Line(random, "Netmask",
                 addresses.size() == 2 ? "255.255.255.0,255.255.255.0" : "255.255.255.0");
    text += Line(random, "Gateway", JoinTexts(random.Some(Hosts(network), 2)));
    const TextList servers = random.Some(Hosts(network), 3);
    text += Line(random, "DNS-Server-Count", std::to_string(servers.size()));
    for (std::size_t i = 0; i < servers.size(); ++i) {
        text += Line(random, "DNS-Server" + std::to_string(i), servers[i]);
    }
    text += Line(random, "DNS-SuffixSearchOrder", JoinTexts(random.Some(suffixes, 3)));
    const std::uint64_t routes = random.Below(4);
    text += Line(random, "Static-Route-Count", random.Chance(30) ? "-1" : std::to_string(routes));
    for (std::uint64_t i = 0; i < routes; ++i) {
        text += Line(random, "Route" + std::to_string(i), RandomRoute(random));
    }
    return text;
}

/// What the sections of a configuration ask of the machine as a whole.
struct Wishes {
    std::set<std::string> suffixLists;  // one of each section that has one
    std::uint64_t sectionsWithRoutes = 0;
    bool longName = false;
};

Wishes ReadWishes(const std::string& configurationFile) {
    namespace Event = config::Event;
    Wishes wishes;
    std::string list;
    bool hasList = false;
    bool hasRoutes = false;
    IniFile file;
    file.Load(configurationFile, false);
    ConfigurationFileEvents events(
        file,
        [&](std::uint32_t kind, std::uint32_t type, const std::string& value) {
            if (kind == Event::DNS_SUFFIX) {
                list += value + ",";
                hasList = true;
            } else if (kind == Event::STATIC_ROUTE) {
                hasRoutes = true;
            } else if (kind == Event::COMPUTER_NAME) {
                wishes.longName |= value.size() > 15;
            } else if (kind == Event::NIC && type == Event::END) {
                if (std::exchange(hasList, false)) {
                    wishes.suffixLists.insert(std::exchange(list, {}));
                }
                wishes.sectionsWithRoutes += std::exchange(hasRoutes, false) ? 1 : 0;
            }
        },
        [] {
            return [](const std::string& enciphered, std::string& plain) {
                plain = machine::Decipher(enciphered);
            };
        });
    events.SuppressesReboot();
    try {
        events.SendSections();
    } catch (const config::ConfigError&) {
        wishes = {};  // refused as a whole: nothing is ever changed
    }
    return wishes;
}

}  // namespace

machine::State RandomMachine(Random& random) {
    machine::State state = cases::LoadBaseMachine(random.Chance(50) ? "workgroup" : "member");
    state.adapters.clear();
    const auto count = static_cast<std::uint32_t>(1 + random.Below(4));
    for (std::uint32_t index = 1; index <= count; ++index) {
        state.adapters.push_back(RandomAdapter(random, index));
    }
    state.routes = RandomRoutes(random);
    state.dnsSuffixes = random.Some(suffixes, 2);
    state.system.adapterChangesNeedRestart = random.Chance(20);
    state.system.comSecuritySet = random.Chance(20);
    return state;
}

std::string RandomConfiguration(Random& random) {
    TextList sections;
    if (random.Chance(50)) {
        sections.push_back("[Global]\n" +
                           Line(random, "RebootAfterConfig", random.Pick({"true", "false"})));
    }
    if (random.Chance(60)) {
        sections.push_back(RandomNetworking(random));
    }
    for (const std::string& name :
         random.Some({"TCP/IP", "NicEntry1", "MyNicEntry", "tcp/ip"}, 3)) {
        sections.push_back(RandomAdapterSection(random, name));
    }
    std::string text;
    for (const std::string& section : random.Some(sections, sections.size() + 3)) {
        text += section;
    }
    return text;
}

std::string WhyItMayNotSettle(const std::string& configurationFile) {
    const Wishes wishes = ReadWishes(configurationFile);
    if (wishes.sectionsWithRoutes > 1) {
        return "each section's routes are a set of their own that wants all others gone";
    }
    if (wishes.suffixLists.size() > 1) {
        return "the suffix list is the machine's, and two sections set it in turn";
    }
    if (wishes.longName) {
        return "a name longer than 15 characters is never the computer's name";
    }
    return {};
}

}  // namespace sweep
