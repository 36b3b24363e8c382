#include "host/snapshot/Snapshot.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <utility>

#include "common/err/GeneralError.h"
#include "common/sys/Domain.h"
#include "common/sys/NicRegistry.h"
#include "common/sys/WmiQueries.h"
#include "common/util/Strings.h"

namespace host::snapshot {

namespace {

using Texts = std::vector<std::string>;

/// Runs one query; an error becomes a note. True when it went well.
class Reader {
public:
    explicit Reader(Texts& notes) : notes_(notes) {}

    bool Read(const std::string& what, const std::function<void()>& query) {
        try {
            query();
            return true;
        } catch (const err::CGeneralError& error) {
            notes_.push_back(what + " cannot be read: " + error.Message() +
                             util::Format(" (0x%X)", static_cast<unsigned>(error.Code())));
        } catch (const std::exception& error) {
            notes_.push_back(what + " cannot be read: " + error.what());
        }
        return false;
    }

    /// The same for what many machines do not have: no note.
    static void ReadIfThere(const std::function<void()>& query) {
        Texts unnoted;
        Reader(unnoted).Read("", query);
    }

private:
    Texts& notes_;
};

Texts TextsOf(const std::vector<ipc::IPv4Address>& addresses) {
    Texts texts;
    for (const ipc::IPv4Address& address : addresses) {
        texts.push_back(address.ToString());
    }
    return texts;
}

std::optional<std::string> NullWhenEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<Texts> NullWhenEmpty(Texts texts) {
    return texts.empty() ? std::nullopt : std::optional(std::move(texts));
}

/// The registry's list of servers, separated by commas or blanks.
Texts SplitServers(const std::string& text) {
    Texts servers;
    std::string server;
    for (const char character : text + " ") {
        if (character != ' ' && character != ',') {
            server += character;
        } else if (!server.empty()) {
            servers.push_back(std::exchange(server, {}));
        }
    }
    return servers;
}

/// A text property; null stays null.
std::optional<std::string> ReadText(
    const std::function<sys::Result(std::uint32_t, std::string&)>& query, std::uint32_t index) {
    std::string text;
    Reader::ReadIfThere([&] { query(index, text); });
    return NullWhenEmpty(std::move(text));
}

void ReadHardware(machine::Adapter& adapter) {
    adapter.settingId = ReadText(sys::getSettingId, adapter.index);
    adapter.pnpDeviceId = ReadText(sys::getPnpDeviceId, adapter.index);
    adapter.caption = ReadText(sys::getCaption, adapter.index);
    adapter.macAddress = ReadText(sys::getMacAddress, adapter.index);
    std::string type;
    std::string manufacturer;
    Reader::ReadIfThere(
        [&] { sys::getAdapterTypeAndManufacturer(adapter.index, type, manufacturer); });
    adapter.adapterType = NullWhenEmpty(std::move(type));
    adapter.manufacturer = NullWhenEmpty(std::move(manufacturer));
    if (adapter.pnpDeviceId) {
        Reader::ReadIfThere(
            [&] { adapter.pciLocation = sys::readLocationInformation(*adapter.pnpDeviceId); });
    }
}

void ReadAddressing(const std::string& name, Reader& reader, machine::Adapter& adapter) {
    bool dhcp = false;
    if (reader.Read(name + ", DHCP,", [&] { sys::getDhcpEnabled(adapter.index, dhcp); })) {
        adapter.dhcpEnabled = dhcp;
    }
    ipc::IPv4Address address;
    ipc::IPv4Address mask;
    const bool addressed = reader.Read(
        name + ", the address,", [&] { sys::getIpAddressAndMask(adapter.index, address, mask); });
    if (addressed && address.NetworkOrder() != 0) {
        adapter.ipAddress = Texts{address.ToString()};
        adapter.ipSubnet = Texts{mask.ToString()};
    }
    std::vector<ipc::IPv4Address> gateways;
    reader.Read(name + ", the gateways,", [&] { sys::getGateways(adapter.index, gateways); });
    adapter.gateways = NullWhenEmpty(TextsOf(gateways));
}

void ReadNames(const std::string& name, Reader& reader, machine::Adapter& adapter,
               machine::State& state) {
    std::vector<ipc::IPv4Address> servers;
    Texts suffixes;
    reader.Read(name + ", DNS,",
                [&] { sys::getDnsServersAndSuffixes(adapter.index, servers, suffixes); });
    adapter.dnsServers = NullWhenEmpty(TextsOf(servers));
    if (state.dnsSuffixes.empty()) {
        state.dnsSuffixes = std::move(suffixes);  // the machine's, shown with every adapter
    }
    std::string domain;
    std::string hostName;
    Reader::ReadIfThere([&] {
        sys::getDnsDomainAndHostName(adapter.index, domain, hostName);
        adapter.dnsDomain = domain;  // an empty text is no null
    });
    adapter.dnsHostName = NullWhenEmpty(std::move(hostName));
    if (adapter.settingId) {
        Reader::ReadIfThere(
            [&] { adapter.staticDns = SplitServers(sys::readNameServer(*adapter.settingId)); });
    }
}

/// What DHCP gave last is the best guess at what it gives next.
void GuessLease(machine::Adapter& adapter) {
    if (!adapter.dhcpEnabled.value_or(false)) {
        return;
    }
    machine::DhcpLease& lease = adapter.dhcpLease.emplace();
    lease.ipAddress = adapter.ipAddress.value_or(Texts());
    lease.ipSubnet = adapter.ipSubnet.value_or(Texts());
    lease.gateways = adapter.gateways.value_or(Texts());
    lease.dnsServers = adapter.staticDns.empty() ? adapter.dnsServers.value_or(Texts()) : Texts();
    lease.dnsDomain = adapter.dnsDomain.value_or("");
}

void ReadAdapters(Reader& reader, machine::State& state) {
    std::vector<std::uint32_t> indexes;
    reader.Read("The list of adapters", [&] { sys::getIpEnabledAdapters(indexes); });
    for (const std::uint32_t index : indexes) {
        machine::Adapter adapter;
        adapter.index = index;
        const std::string name = "Adapter " + std::to_string(index);
        ReadHardware(adapter);
        ReadAddressing(name, reader, adapter);
        ReadNames(name, reader, adapter, state);
        GuessLease(adapter);
        state.adapters.push_back(std::move(adapter));
    }
}

void ReadRoutes(Reader& reader, machine::State& state) {
    std::vector<sys::RouteRecord> routes;
    reader.Read("The table of persistent routes", [&] { sys::getStaticRoutes(routes); });
    for (const sys::RouteRecord& route : routes) {
        state.routes.push_back({route.destination.ToString(), route.mask.ToString(),
                                route.nextHop.ToString(), static_cast<std::int32_t>(route.metric)});
    }
}

/// The domain with this computer's object in its unit. Whatever else it holds stays unknown.
machine::Domain KnownDomain(const machine::State& state, const std::string& unit) {
    machine::Domain domain;
    domain.dnsName = state.membership.dnsDomain;
    domain.flatName = state.membership.domain;
    machine::TextList* computers = &domain.computers;
    std::vector<machine::OrganizationalUnit>* units = &domain.units;
    std::size_t start = 0;
    while (start < unit.size()) {
        const std::size_t slash = std::min(unit.find('/', start), unit.size());
        units->push_back({unit.substr(start, slash - start), {}, {}});
        computers = &units->back().computers;
        units = &units->back().units;
        start = slash + 1;
    }
    computers->push_back(state.computerName);
    return domain;
}

void ReadMembership(Reader& reader, machine::State& state) {
    sys::Domain domain;
    bool member = false;
    if (!reader.Read("The membership", [&] { member = domain.IsDomainMember(); })) {
        return;
    }
    if (!member) {
        if (!domain.Workgroup().empty()) {
            state.membership = machine::Membership::OfWorkgroup(domain.Workgroup());
        }
        return;
    }
    const auto either = [](const std::string& first, const std::string& second) {
        return first.empty() ? second : first;
    };
    state.membership =
        machine::Membership::OfDomain(either(domain.DomainName(), domain.DnsDomainName()),
                                      either(domain.DnsDomainName(), domain.DomainName()));
    std::string unit;
    reader.Read("The computer's unit in the directory", [&] { domain.GetOu(unit, false); });
    state.domains.push_back(KnownDomain(state, unit));
}

}  // namespace

Snapshot TakeSnapshot() {
    Snapshot snapshot;
    Reader reader(snapshot.notes);
    machine::State& state = snapshot.state;
    reader.Read("The computer's name", [&] { sys::getComputerName(state.computerName); });
    ReadAdapters(reader, state);
    state.hostName = state.computerName;
    for (const machine::Adapter& adapter : state.adapters) {
        if (adapter.dnsHostName) {
            state.hostName = *adapter.dnsHostName;
            break;
        }
    }
    ReadRoutes(reader, state);
    ReadMembership(reader, state);
    return snapshot;
}

}  // namespace host::snapshot
