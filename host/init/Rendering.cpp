#include "host/init/Rendering.h"

#include <string_view>

#include "host/configure/Values.h"
#include "host/init/Writer.h"
#include "machine/Text.h"
#include "toolbox/config/ConfigurationKeys.h"

namespace host::init {

namespace {

namespace key = config::key;

void Remark(Writer& writer, const Texts& remarks) {
    for (const std::string& remark : remarks) {
        writer.Comment(remark);
    }
}

void EntryIf(Writer& writer, bool said, std::string_view name, const std::string& value) {
    said ? writer.Entry(name, value) : writer.EntryAside(name, value);
}

void RenderMembership(Writer& writer, const Identity& identity) {
    const machine::Membership& membership = identity.membership;
    const bool said = identity.saysMembership;
    const bool hasDnsName = !membership.dnsDomain.empty();
    EntryIf(writer, said, key::kWorkgroup, membership.member ? "False" : "True");
    if (!membership.member) {
        EntryIf(writer, said, key::kDomain, membership.workgroup);
        writer.Comment("For a member of a domain, with Workgroup=False:");
    } else if (!hasDnsName) {
        EntryIf(writer, said, key::kDomain, membership.domain);
    }
    EntryIf(writer, said && membership.member, key::kDnsDomain, membership.dnsDomain);
    if (membership.member && identity.unit.empty()) {
        writer.Comment(
            "In no unit that is known. An empty value with an account moves the computer to "
            "CN=Computers.");
    }
    EntryIf(writer, identity.saysUnit, key::kDsOrganizationalUnit, identity.unit);
}

void RenderIdentity(Writer& writer, const Identity& identity) {
    const bool waits = !identity.saysMembership || !identity.saysName ||
                       (identity.membership.member && !identity.unit.empty() && !identity.saysUnit);
    writer.Blank();
    writer.Section(key::kNetworking);
    Remark(writer, identity.remarks);
    writer.Comment(
        "The account, enciphered for the agent's LibCrypto.dll. It cannot be read from a "
        "machine. Renaming, moving, joining and removing a domain member need one.");
    writer.EntryAside(key::kDomainUsername, "");
    writer.EntryAside(key::kDomainPassword, "");
    if (waits) {
        writer.Comment(
            "By hand: what stands in comments below waits for the account, or cannot be written.");
    }
    RenderMembership(writer, identity);
    EntryIf(writer, identity.saysName, key::kComputerName, identity.name);
}

void RenderAddressing(Writer& writer, const AdapterDescription& adapter) {
    writer.Entry(key::kDhcp, adapter.dhcp ? "true" : "false");
    if (adapter.dhcp) {
        writer.Comment("From DHCP, and not read:");
    }
    EntryIf(writer, !adapter.dhcp, key::kAddress, machine::Join(adapter.addresses, ","));
    EntryIf(writer, !adapter.dhcp, key::kNetmask, machine::Join(adapter.masks, ","));
    EntryIf(writer, !adapter.dhcp, key::kGateway, machine::Join(adapter.gateways, ","));
}

/// `further`: whether the section is to go on to suffixes and routes, which it does unless its last
/// server is missing.
void RenderServers(Writer& writer, const AdapterDescription& adapter, bool further) {
    if (adapter.servers.empty()) {
        writer.Comment("The DNS servers stay as they are: " +
                       configure::ListText(adapter.presentServers) + ".");
    }
    writer.Entry(key::kDnsServerCount, std::to_string(adapter.servers.size() + (further ? 0 : 1)));
    for (std::size_t i = 0; i < adapter.servers.size(); ++i) {
        writer.Entry(std::string(key::kDnsServer) + std::to_string(i), adapter.servers[i]);
    }
}

void RenderRoutes(Writer& writer, const Description& description) {
    const std::vector<machine::PersistedRoute>& routes = description.routes;
    writer.Comment(
        "The persistent routes of the machine: destination, mask, gateway, nothing, metric.");
    if (!description.saysRoutes && !routes.empty()) {
        writer.Comment(
            "Left as they are: there is a second default route, or no section gets that far.");
    }
    writer.Entry(key::kStaticRouteCount,
                 description.saysRoutes ? std::to_string(routes.size()) : "-1");
    for (std::size_t i = 0; i < routes.size(); ++i) {
        const machine::PersistedRoute& route = routes[i];
        const Texts fields = {
            route.destination, route.mask, route.nextHop, "", std::to_string(route.metric), ""};
        EntryIf(writer, description.saysRoutes, std::string(key::kRoute) + std::to_string(i),
                machine::Join(fields, ","));
    }
}

/// The routes, and what is to be said of the machine's suffixes, stand in the first section.
void RenderAdapter(Writer& writer, const Description& description, std::size_t number) {
    const AdapterDescription& adapter = description.adapters[number];
    writer.Comment(adapter.adapter);
    Remark(writer, adapter.remarks);
    writer.Section(description.adapters.size() == 1
                       ? std::string(key::kTcpIp)
                       : std::string(key::kNicEntry) + std::to_string(number));
    writer.Entry(key::kDescription, adapter.label);
    RenderAddressing(writer, adapter);
    if (number == 0) {
        Remark(writer, description.suffixRemarks);
    }
    RenderServers(writer, adapter, !description.suffixes.empty());
    writer.Entry(key::kDnsSuffixSearchOrder, description.suffixes);
    if (number == 0) {
        RenderRoutes(writer, description);
    } else {
        writer.Entry(key::kStaticRouteCount, "-1");
    }
}

void RenderAdapters(Writer& writer, const Description& description) {
    const std::size_t sayable = description.Sayable();
    for (std::size_t i = 0; i < description.adapters.size(); ++i) {
        writer.Blank();
        if (i == sayable) {
            writer.Comment("Left out from here on: " + description.adapters[i].obstacle +
                           ". Sections take the adapters in turn.");
        }
        writer.SetAside(i >= sayable);
        RenderAdapter(writer, description, i);
        writer.SetAside(false);
    }
    if (description.adapters.empty()) {
        writer.Blank();
        writer.Comment("No adapter of the machine takes a section.");
    }
}

}  // namespace

std::string Render(const Description& description, const Texts& heading) {
    Writer writer;
    Remark(writer, heading);
    writer.Blank();
    writer.Section(key::kGlobal);
    writer.Comment("false: the module answers \"Failure\" where a restart is needed.");
    writer.Entry(key::kRebootAfterConfig, "true");
    RenderIdentity(writer, description.identity);
    RenderAdapters(writer, description);
    return writer.Text();
}

}  // namespace host::init
