// From JSON to a machine's state.
#include <algorithm>

#include "machine/CodePage.h"
#include "machine/MachineFile.h"
#include "machine/Text.h"
#include "machine/file/JsonReader.h"
#include "machine/file/RegistryFile.h"
#include "machine/model/Address.h"

namespace machine::file {
namespace {

void ReadAddress(Members& members, const Node& node, const std::string& name,
                 std::string& address) {
    members.Require(name, address);
    if (!model::ParseAddress(address)) {
        node.Member(name).Refuse("an IPv4 address");
    }
}

}  // namespace

void Read(const Node& node, DhcpLease& lease) {
    Members members(node);
    members.Take("ipAddress", lease.ipAddress);
    members.Take("ipSubnet", lease.ipSubnet);
    members.Take("gateways", lease.gateways);
    members.Take("dnsServers", lease.dnsServers);
    members.Take("dnsDomain", lease.dnsDomain);
    members.Finish();
}

void Read(const Node& node, Adapter& adapter) {
    Members members(node);
    members.Require("index", adapter.index);
    members.Take("connectionName", adapter.connectionName);
    members.Take("settingId", adapter.settingId);
    members.Take("pnpDeviceId", adapter.pnpDeviceId);
    members.Take("pciLocation", adapter.pciLocation);
    members.Take("caption", adapter.caption);
    members.Take("manufacturer", adapter.manufacturer);
    members.Take("adapterType", adapter.adapterType);
    members.Take("macAddress", adapter.macAddress);
    members.Take("ipEnabled", adapter.ipEnabled);
    members.Take("dhcpEnabled", adapter.dhcpEnabled);
    members.Take("ipAddress", adapter.ipAddress);
    members.Take("ipSubnet", adapter.ipSubnet);
    members.Take("gateways", adapter.gateways);
    members.Take("dnsServers", adapter.dnsServers);
    members.Take("dnsDomain", adapter.dnsDomain);
    members.Take("dnsHostName", adapter.dnsHostName);
    members.Take("dhcpLease", adapter.dhcpLease);
    // Servers of an adapter without DHCP were set by hand.
    if (!members.Take("staticDns", adapter.staticDns) && adapter.dhcpEnabled == false) {
        adapter.staticDns = adapter.dnsServers.value_or(TextList());
    }
    members.Finish();
}

void Read(const Node& node, PersistedRoute& route) {
    Members members(node);
    ReadAddress(members, node, "destination", route.destination);
    ReadAddress(members, node, "mask", route.mask);
    ReadAddress(members, node, "nextHop", route.nextHop);
    members.Take("metric", route.metric);
    members.Finish();
}

void Read(const Node& node, Account& account) {
    Members members(node);
    members.Require("name", account.name);
    members.Require("password", account.password);
    members.Take("mayJoin", account.mayJoin);
    members.Take("mayMove", account.mayMove);
    members.Finish();
}

void Read(const Node& node, OrganizationalUnit& unit) {
    Members members(node);
    members.Require("name", unit.name);
    members.Take("computers", unit.computers);
    members.Take("units", unit.units);
    members.Finish();
}

void Read(const Node& node, Domain& domain) {
    Members members(node);
    members.Require("dnsName", domain.dnsName);
    members.Require("flatName", domain.flatName);
    members.Take("reachable", domain.reachable);
    members.Take("accounts", domain.accounts);
    members.Take("computers", domain.computers);
    members.Take("units", domain.units);
    members.Finish();
}

void Read(const Node& node, Membership& membership) {
    Members members(node);
    membership = {};
    const bool hasWorkgroup = members.Take("workgroup", membership.workgroup);
    const bool hasDomain = members.Take("domain", membership.domain);
    const bool hasDnsDomain = members.Take("dnsDomain", membership.dnsDomain);
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
            if (!model::ParseAddress(host.addresses[i])) {
                list.Element(i).Refuse("an IPv4 address");
            }
        }
        hosts.push_back(std::move(host));
    }
}

void Read(const Node& node, CryptoLibrary& library) {
    const std::string text = node.Text();
    if (text == "present") {
        library = CryptoLibrary::Present;
    } else if (text == "absent") {
        library = CryptoLibrary::Absent;
    } else if (text == "withoutExport") {
        library = CryptoLibrary::WithoutExport;
    } else {
        node.Refuse(R"("present", "absent" or "withoutExport")");
    }
}

void Read(const Node& node, OperatingSystem& system) {
    Members members(node);
    members.Take("libCrypto", system.libCrypto);
    members.Take("comSecuritySet", system.comSecuritySet);
    members.Take("adapterChangesNeedRestart", system.adapterChangesNeedRestart);
    members.Finish();
}

void Read(const Node& node, State& state) {
    Members members(node);
    members.Require("computerName", state.computerName);
    members.Take("pendingComputerName", state.pendingComputerName);
    if (!members.Take("hostName", state.hostName)) {
        state.hostName = state.computerName;
    }
    members.Take("membership", state.membership);
    members.Take("pendingMembership", state.pendingMembership);
    members.Take("dnsSuffixes", state.dnsSuffixes);
    members.Take("adapters", state.adapters);
    members.Take("routes", state.routes);
    members.Take("registry", state.registry);
    members.Take("domains", state.domains);
    members.Take("hosts", state.hosts);
    members.Take("system", state.system);
    members.Finish();
    for (std::size_t i = 0; i < state.adapters.size(); ++i) {
        const std::uint32_t index = state.adapters[i].index;
        if (std::ranges::count(state.adapters, index, &Adapter::index) != 1 &&
            FindAdapter(state, index) != &state.adapters[i]) {
            node.Member("adapters")
                .Element(i)
                .Member("index")
                .Reject("another adapter has the index " + std::to_string(index));
        }
    }
}

}  // namespace machine::file

namespace machine {

State ParseState(std::string_view json) {
    const file::Json parsed = file::ParseJson(json);
    State state;
    file::Read(file::Node(parsed, ""), state);
    return state;
}

}  // namespace machine
