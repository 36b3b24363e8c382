// From JSON to a machine's state.
#include <algorithm>

#include "machine/CodePage.h"
#include "machine/MachineFile.h"
#include "machine/file/JsonReader.h"
#include "machine/file/Layout.h"
#include "machine/file/RegistryFile.h"
#include "machine/model/Address.h"
#include "machine/model/Network.h"
#include "machine/model/Routes.h"

namespace machine::file {

template <typename Object>
void Read(const Node& node, Object& object) {
    Members members(node);
    ListMembers(members, object);
    members.Finish();
    Check(node, object);
}

/// What the members of an object must agree on, or default to.
template <typename Object>
void Check(const Node& /*node*/, Object& /*object*/) {}

void ExpectAddress(const Node& node, const std::string& address) {
    if (!model::ParseAddress(address)) {
        node.Refuse("an IPv4 address");
    }
}

/// The addresses of an adapter: Windows lists those of IPv6 among them.
void ExpectAddresses(const Node& node, const char* name, const std::optional<TextList>& texts) {
    for (std::size_t i = 0; texts && i < texts->size(); ++i) {
        if (!model::IsIPv6((*texts)[i])) {
            ExpectAddress(node.Member(name).Element(i), (*texts)[i]);
        }
    }
}

/// Its masks: the length of a prefix stands beside an address of IPv6, and nothing beside "0.0.0.0"
/// (both seen).
void ExpectMasks(const Node& node, const char* name, const std::optional<TextList>& texts) {
    for (std::size_t i = 0; texts && i < texts->size(); ++i) {
        if ((*texts)[i].find_first_not_of("0123456789") != std::string::npos) {
            ExpectAddress(node.Member(name).Element(i), (*texts)[i]);
        }
    }
}

/// The lists that an adapter and a lease have.
template <typename Object>
void CheckAddressing(const Node& node, const Object& object) {
    const std::optional<TextList> addresses = object.ipAddress;
    const std::optional<TextList> masks = object.ipSubnet;
    ExpectAddresses(node, "ipAddress", addresses);
    ExpectMasks(node, "ipSubnet", masks);
    ExpectAddresses(node, "gateways", object.gateways);
    ExpectAddresses(node, "dnsServers", object.dnsServers);
    const std::size_t count = addresses ? addresses->size() : 0;
    if (masks && masks->size() != count) {
        (node.Value().contains("ipSubnet") ? node.Member("ipSubnet") : node)
            .Reject(std::to_string(masks->size()) + " masks for " + std::to_string(count) +
                    " addresses");
    }
}

void Check(const Node& node, DhcpLease& lease) {
    CheckAddressing(node, lease);
}

void Check(const Node& node, Adapter& adapter) {
    CheckAddressing(node, adapter);
    // Servers of an adapter without DHCP were set by hand.
    if (!node.Value().contains("staticDns") && adapter.dhcpEnabled == false) {
        adapter.staticDns = adapter.dnsServers.value_or(TextList());
    }
}

void Check(const Node& node, PersistedRoute& route) {
    ExpectAddress(node.Member("destination"), route.destination);
    ExpectAddress(node.Member("mask"), route.mask);
    ExpectAddress(node.Member("nextHop"), route.nextHop);
}

void ExpectOneOf(const Node& node, const std::string& name, std::uint32_t value,
                 std::uint32_t either, std::uint32_t other) {
    if (value != either && value != other) {
        node.Member(name).Refuse(std::to_string(either) + " or " + std::to_string(other));
    }
}

void Check(const Node& node, Versions& versions) {
    ExpectOneOf(node, "staticOnStatic", versions.staticOnStatic, model::kSucceeded,
                model::kDhcpNotConfigured);
    ExpectOneOf(node, "refusedRoute", versions.refusedRoute, 0, 1);
    ExpectOneOf(node, "notElevated", versions.notElevated, model::kWbemAccessDenied,
                model::kAccessIsDenied);
}

void Check(const Node& node, State& state) {
    model::PersistGateways(state);
    if (!node.Value().contains("hostName")) {
        state.hostName = state.computerName;
    }
    for (std::size_t i = 0; i < state.adapters.size(); ++i) {
        const std::uint32_t index = state.adapters[i].index;
        if (FindAdapter(state, index) != &state.adapters[i]) {
            node.Member("adapters")
                .Element(i)
                .Member("index")
                .Reject("another adapter has the index " + std::to_string(index));
        }
    }
    // Seen in two public dumps: the rows of a query ascend by index. So do the adapters here, and
    // sections take them in that order.
    std::ranges::sort(state.adapters, {}, &Adapter::index);
}

void Read(const Node& node, Membership& membership) {
    Members members(node);
    membership = {};
    const bool hasWorkgroup = members.Optional("workgroup", membership.workgroup);
    const bool hasDomain = members.Optional("domain", membership.domain);
    const bool hasDnsDomain = members.Optional("dnsDomain", membership.dnsDomain);
    members.Finish();
    if (hasDomain != hasDnsDomain || hasDomain == hasWorkgroup) {
        node.Reject(
            "a machine belongs to a \"workgroup\" or to a \"domain\" with its \"dnsDomain\"");
    }
    membership.member = hasDomain;
    if (hasDomain) {
        membership.workgroup.clear();
    }
}

void Read(const Node& node, std::vector<HostName>& hosts) {
    node.ExpectObject();
    hosts.clear();
    for (const auto& [name, addresses] : node.Value().items()) {
        HostName host{FromUtf8(name).value_or(name), {}};
        const Node list = node.Member(name);
        Read(list, host.addresses);
        for (std::size_t i = 0; i < host.addresses.size(); ++i) {
            ExpectAddress(list.Element(i), host.addresses[i]);
        }
        hosts.push_back(std::move(host));
    }
}

void Read(const Node& node, State& state) {
    Members members(node);
    std::string schema;  // where an editor finds what completes the file
    members.Optional("$schema", schema);
    ListMembers(members, state);
    members.Finish();
    Check(node, state);
}

template <typename Choice>
requires std::is_enum_v<Choice>
void Read(const Node& node, Choice& choice) {
    const auto& names = NamesOf(choice);
    const std::string text = node.Text();
    const auto found = std::ranges::find(names, text, &Names<Choice>::second);
    if (found == names.end()) {
        std::string expected;
        for (const auto& [value, name] : names) {
            const bool isLast = name == names.back().second;
            expected += expected.empty() ? "\"" : isLast ? " or \"" : ", \"";
            expected += std::string(name) + "\"";
        }
        node.Refuse(expected);
    }
    choice = found->first;
}

}  // namespace machine::file

namespace machine {

State ParseState(std::string_view json) {
    const file::Json parsed = file::ParseJson(json);
    State state;
    Read(file::Node(parsed, ""), state);
    return state;
}

}  // namespace machine
