#include "host/configure/Values.h"

#include <algorithm>
#include <iterator>

#include "common/util/Strings.h"
#include "host/check/MachineRouteCheck.h"
#include "host/reading/SettingNames.h"
#include "machine/model/AdapterView.h"
#include "machine/model/Identity.h"
#include "machine/model/Routes.h"

namespace host::configure {

namespace {

using Kind = Setting::Kind;
using Texts = std::vector<std::string>;

/// The last three numbers of a text such as "PCI bus 2, device 1, function 0", joined by "/".
std::string PciNumbers(const std::string& location) {
    Texts numbers;
    std::string run;
    for (const char character : location + " ") {
        if (util::IsDigit(character)) {
            run += character;
        } else if (!run.empty()) {
            numbers.push_back(std::move(run));
            run.clear();
        }
    }
    if (numbers.size() < 3) {
        return {};
    }
    const std::size_t first = numbers.size() - 3;
    return numbers[first] + "/" + numbers[first + 1] + "/" + numbers[first + 2];
}

/// "[00000007] Name" without the number.
std::string CaptionName(const std::string& caption) {
    const std::size_t bracket = caption.find("] ");
    return bracket == std::string::npos ? caption : caption.substr(bracket + 2);
}

std::string FindIn(const std::vector<machine::OrganizationalUnit>& units, const std::string& name,
                   const std::string& above) {
    for (const machine::OrganizationalUnit& unit : units) {
        std::string path = above.empty() ? unit.name : above + "/" + unit.name;
        for (const std::string& computer : unit.computers) {
            if (util::NoCaseEqual(computer, name)) {
                return path;
            }
        }
        if (std::string below = FindIn(unit.units, name, path); !below.empty()) {
            return below;
        }
    }
    return {};
}

Texts TextsOf(const std::vector<machine::PersistedRoute>& routes) {
    Texts texts;
    std::ranges::transform(routes, std::back_inserter(texts), check::TextOf);
    return texts;
}

Texts AdapterValues(const machine::Adapter& adapter, Kind kind) {
    const bool dhcp = adapter.dhcpEnabled.value_or(false);
    switch (kind) {
        case Kind::kDhcp:
            return {dhcp ? "on" : "off"};
        case Kind::kAddresses: {
            const Texts addresses = AddressesOf(adapter);
            return dhcp ? Texts{"DHCP (" + ListText(addresses) + ")"} : addresses;
        }
        case Kind::kGateways:
            return adapter.gateways.value_or(Texts());
        case Kind::kDnsServers:
            return adapter.dnsServers.value_or(Texts());
        default:
            return {};
    }
}

}  // namespace

std::string AdapterLabel(const machine::Adapter& adapter) {
    std::string label;
    if (machine::model::IsPci(adapter)) {
        const std::string numbers = PciNumbers(adapter.pciLocation.value_or(""));
        label = numbers.empty() ? "PCI " : "PCI " + numbers + " ";
    }
    const std::string name = adapter.connectionName.empty()
                                 ? CaptionName(adapter.caption.value_or(""))
                                 : adapter.connectionName;
    if (!name.empty()) {
        label += "\"" + name + "\" ";
    }
    return label + "(index " + std::to_string(adapter.index) + ")";
}

const machine::Adapter* AdapterOf(const machine::State& state, std::optional<std::uint32_t> index) {
    const auto found = std::ranges::find_if(
        state.adapters, [&](const machine::Adapter& adapter) { return adapter.index == index; });
    return found == state.adapters.end() ? nullptr : &*found;
}

Texts AddressesOf(const machine::Adapter& adapter) {
    Texts texts;
    const Texts addresses = adapter.ipAddress.value_or(Texts());
    const Texts masks = adapter.ipSubnet.value_or(Texts());
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        texts.push_back(addresses[i] + "/" + (i < masks.size() ? masks[i] : "?"));
    }
    return texts;
}

Texts AllRoutes(const machine::State& state) {
    return TextsOf(state.routes);
}

std::optional<std::string> FirstDefaultRoute(const machine::State& state) {
    const auto found = std::ranges::find_if(state.routes, machine::model::IsDefaultRoute);
    return found == state.routes.end() ? std::nullopt : std::optional(check::TextOf(*found));
}

std::string MembershipText(const machine::Membership& membership) {
    if (!membership.member) {
        return "workgroup " + membership.workgroup;
    }
    return "domain " + (membership.dnsDomain.empty() ? membership.domain : membership.dnsDomain);
}

std::string UnitOf(const machine::State& state, const std::string& domain,
                   const std::string& computer) {
    for (const machine::Domain& candidate : state.domains) {
        if (!util::NoCaseEqual(candidate.dnsName, domain) &&
            !util::NoCaseEqual(candidate.flatName, domain)) {
            continue;
        }
        for (const std::string& name : candidate.computers) {
            if (util::NoCaseEqual(name, computer)) {
                return "Computers";
            }
        }
        return FindIn(candidate.units, computer, {});
    }
    return {};
}

std::optional<Texts> CurrentValues(const machine::State& state, Kind kind,
                                   std::optional<std::uint32_t> index) {
    switch (kind) {
        case Kind::kWorkgroup:
        case Kind::kDomain:
            return Texts{MembershipText(machine::model::ShownMembership(state))};
        case Kind::kUnit: {
            const std::string unit = UnitOf(state, state.membership.dnsDomain, state.computerName);
            return unit.empty() ? Texts() : Texts{unit};
        }
        case Kind::kComputerName:
            return Texts{state.computerName};
        case Kind::kDnsSuffixes:
            return machine::model::ShownSuffixes(state);
        case Kind::kRoutes:
            return TextsOf(check::ComparedRoutes(state));
        default: {
            const machine::Adapter* const adapter = AdapterOf(state, index);
            return adapter == nullptr ? std::nullopt : std::optional(AdapterValues(*adapter, kind));
        }
    }
}

Texts WantedValues(const Setting& setting) {
    if (setting.kind != Kind::kWorkgroup && setting.kind != Kind::kDomain) {
        return reading::WantedTexts(setting);
    }
    Texts wanted;
    for (const reading::Value& name : setting.wanted) {
        wanted.push_back((setting.kind == Kind::kDomain ? "domain " : "workgroup ") + name.text);
    }
    return wanted;
}

std::string ListText(const Texts& values) {
    std::string text;
    for (const std::string& value : values) {
        // Blanks at an end would look like the list's own.
        const bool quoted = value != util::TrimBlanks(value) || value.empty();
        text += (text.empty() ? "" : ", ") + (quoted ? "\"" + value + "\"" : value);
    }
    return text.empty() ? "none" : text;
}

std::string ListText(const std::optional<Texts>& values) {
    return values ? ListText(*values) : "unknown";
}

}  // namespace host::configure
