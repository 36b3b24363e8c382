#include "host/init/Description.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "common/sys/Domain.h"
#include "common/util/Strings.h"
#include "host/check/MachineRouteCheck.h"
#include "host/configure/Values.h"
#include "host/init/Writer.h"
#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/Directory.h"
#include "machine/model/Routes.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace host::init {

namespace {

using configure::ListText;
using machine::model::ParseAddress;

bool AreAddresses(const Texts& texts) {
    return !texts.empty() && std::ranges::all_of(texts, [](const std::string& text) {
        return ParseAddress(text).has_value();
    });
}

/// Whether a section is bound to it: the module lists what TCP/IP is bound to and takes PCI
/// devices.
bool TakesSection(const machine::Adapter& adapter) {
    return machine::model::HasIp(adapter) && machine::model::IsPci(adapter);
}

bool UsesDhcp(const machine::Adapter& adapter) {
    return adapter.dhcpEnabled.value_or(false);
}

std::string LabelOf(const machine::Adapter& adapter) {
    const std::string name(util::TrimBlanks(adapter.connectionName));
    return !name.empty() && CanBeValue(name) ? name : "Adapter " + std::to_string(adapter.index);
}

/// The IPv4 addresses with their masks; Windows lists IPv6 ones after them.
void TakeAddresses(const machine::Adapter& adapter, AdapterDescription& description) {
    const Texts addresses = adapter.ipAddress.value_or(Texts());
    const Texts masks = adapter.ipSubnet.value_or(Texts());
    for (std::size_t i = 0; i < std::min(addresses.size(), masks.size()); ++i) {
        if (ParseAddress(addresses[i]) && ParseAddress(masks[i])) {
            description.addresses.push_back(addresses[i]);
            description.masks.push_back(masks[i]);
        } else if (i == 0) {
            return;
        }
    }
}

/// Static addressing, or why it cannot be said.
std::string TakeStatic(const machine::Adapter& wanted, const machine::Adapter& present,
                       AdapterDescription& description) {
    TakeAddresses(wanted, description);
    if (description.addresses.empty()) {
        return "its first address is not an IPv4 address with a mask";
    }
    const Texts gateways = wanted.gateways.value_or(Texts());
    if (AreAddresses(gateways)) {
        description.gateways = gateways;
        return {};
    }
    if (!gateways.empty()) {
        return "a gateway of it is not an IPv4 address: " + ListText(gateways);
    }
    const Texts others = present.gateways.value_or(Texts());
    if (UsesDhcp(present) || !AreAddresses(others)) {
        return "it is static without a gateway, and a static section sets at least one";
    }
    description.gateways = others;
    description.remarks.push_back(
        "By hand: take the gateway away. The adapter had none, and a static section sets at least "
        "one.");
    return {};
}

void TakeServers(const machine::Adapter& wanted, const machine::Adapter& present,
                 AdapterDescription& description) {
    const Texts servers = wanted.dnsServers.value_or(Texts());
    const bool byHand = !UsesDhcp(wanted) || !wanted.staticDns.empty();
    const bool givenBack = !byHand && !present.staticDns.empty();
    const bool passedOver = std::ranges::find(servers, "0.0.0.0") != servers.end();
    if ((byHand || givenBack) && AreAddresses(servers) && !passedOver) {
        description.servers = servers;
    } else {
        description.presentServers = present.dnsServers.value_or(Texts());
    }
    if (givenBack || (description.servers.empty() && wanted.staticDns != present.staticDns)) {
        description.remarks.push_back(
            "By hand: empty the list of DNS servers. A file can change it, and neither empty it "
            "nor hand it back to DHCP.");
    }
}

AdapterDescription DescribeAdapter(const machine::Adapter& wanted,
                                   const machine::Adapter& present) {
    AdapterDescription description;
    description.adapter = configure::AdapterLabel(wanted);
    description.label = LabelOf(wanted);
    description.dhcp = UsesDhcp(wanted);
    if (description.dhcp) {
        TakeAddresses(wanted, description);
        description.gateways = wanted.gateways.value_or(Texts());
    } else {
        description.obstacle = TakeStatic(wanted, present, description);
        if (!description.obstacle.empty() && UsesDhcp(present)) {
            description.dhcp = true;
            description.remarks.push_back("By hand: make it static. No section can say it: " +
                                          std::exchange(description.obstacle, {}) +
                                          ". It stays with DHCP.");
        }
    }
    TakeServers(wanted, present, description);
    return description;
}

std::string UnitOf(machine::State state) {
    std::string unit;
    sys::Domain::ExtractOuPath(machine::model::OwnDistinguishedName(state).value_or(""), unit,
                               false);
    return unit;
}

std::string NameOf(const machine::Membership& membership) {
    return !membership.member             ? membership.workgroup
           : membership.dnsDomain.empty() ? membership.domain
                                          : membership.dnsDomain;
}

Identity DescribeIdentity(const machine::State& wanted, const machine::State& present) {
    Identity identity;
    identity.name = wanted.computerName;
    identity.membership = wanted.membership;
    identity.unit = UnitOf(wanted);
    // Without an account Windows neither renames nor moves a domain's member, nor lets it join or
    // leave.
    const bool needsAccount = wanted.membership.member || present.membership.member;
    identity.saysName =
        !identity.name.empty() && CanBeValue(identity.name) &&
        (!present.membership.member || util::NoCaseEqual(identity.name, present.computerName));
    const std::string name = NameOf(wanted.membership);
    identity.saysMembership = !name.empty() && CanBeValue(name) &&
                              CanBeValue(wanted.membership.domain) &&
                              (!needsAccount || wanted.membership == present.membership);
    identity.saysUnit = identity.saysMembership && !identity.unit.empty() &&
                        CanBeValue(identity.unit) && identity.unit == UnitOf(present);
    if (wanted.pendingComputerName || wanted.pendingMembership) {
        identity.remarks.emplace_back(
            "A restart is pending that changes the name or the membership. Below is the state "
            "before "
            "it; run afterwards, this file would change them back.");
    }
    return identity;
}

void DescribeSuffixes(const machine::State& wanted, const machine::State& present,
                      Description& description) {
    const machine::TextList wantedSuffixes = machine::model::ShownSuffixes(wanted);
    const machine::TextList presentSuffixes = machine::model::ShownSuffixes(present);
    if (CanBeList(wantedSuffixes)) {
        description.suffixes = wantedSuffixes;
    } else if (CanBeList(presentSuffixes)) {
        description.suffixes = presentSuffixes;
        description.suffixRemarks.push_back(
            "By hand: " +
            (wantedSuffixes.empty()
                 ? "empty the machine's suffix list"
                 : "make the machine's suffix list " + ListText(wantedSuffixes)) +
            ". No file can; below is the list that it has.");
    } else {
        description.suffixRemarks.push_back(
            "The machine's suffix list is " +
            (wantedSuffixes.empty() ? "empty" : ListText(wantedSuffixes)) +
            ", which no file can say. So the count of servers is one too high: the module then "
            "sets neither suffixes nor routes.");
    }
}

}  // namespace

std::size_t Description::Sayable() const {
    const auto first = std::ranges::find_if(
        adapters, [](const AdapterDescription& adapter) { return !adapter.obstacle.empty(); });
    return static_cast<std::size_t>(std::distance(adapters.begin(), first));
}

Description Describe(const machine::State& wanted, const machine::State& present) {
    Description description;
    description.identity = DescribeIdentity(wanted, present);
    for (const machine::Adapter& adapter : wanted.adapters) {
        const machine::Adapter* const counterpart = configure::AdapterOf(present, adapter.index);
        if (TakesSection(adapter)) {
            description.adapters.push_back(
                DescribeAdapter(adapter, counterpart == nullptr ? adapter : *counterpart));
        }
    }
    DescribeSuffixes(wanted, present, description);
    description.routes = check::ComparedRoutes(wanted);
    // A second default route would have to stand in the file, where none belongs.
    description.saysRoutes =
        !description.suffixes.empty() && description.Sayable() != 0 &&
        description.routes.size() <= ConfigurationFileEvents::kMaximumCount &&
        std::ranges::none_of(description.routes, machine::model::IsDefaultRoute);
    return description;
}

}  // namespace host::init
