#include "host/snapshot/Snapshot.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "common/err/GeneralError.h"
#include "common/sys/Domain.h"
#include "common/sys/WmiQueries.h"
#include "common/sys/nic/NicRegistry.h"
#include "host/snapshot/ReadFailure.h"

namespace host::snapshot {

namespace {

using Texts = std::vector<std::string>;

/// Runs reads; one that fails becomes a note.
class Reader {
public:
    explicit Reader(Texts& notes) : notes_(notes) {}

    void Read(const std::string& what, const std::function<void()>& read) {
        try {
            read();
        } catch (...) {
            Note(what, DescribeReadFailure());
        }
    }

    /// The same for a registry value that many machines do not have.
    void ReadIfThere(const std::string& what, const std::function<void()>& read) {
        Read(what, [&read] {
            try {
                read();
            } catch (const sys::RegistryError& error) {
                if (!IsMissing(error)) {
                    throw;
                }
            }
        });
    }

    void Query(const std::string& what, const std::function<sys::Result()>& query) {
        sys::Result result = 0;
        Read(what, [&] { result = query(); });
        if (result < 0) {
            Note(what, DescribeUnreadProperty(result));
        }
    }

private:
    void Note(const std::string& what, const std::string& why) {
        notes_.push_back(what + " cannot be read: " + why);
    }

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

/// What of an adapter is read: "Adapter 7: IPAddress and IPSubnet".
std::string Of(const machine::Adapter& adapter, const std::string& what) {
    return "Adapter " + std::to_string(adapter.index) + ": " + what;
}

std::optional<std::string> ReadText(
    Reader& reader, const machine::Adapter& adapter, const char* property,
    const std::function<sys::Result(std::uint32_t, std::string&)>& query) {
    std::string text;
    reader.Query(Of(adapter, property), [&] { return query(adapter.index, text); });
    return NullWhenEmpty(std::move(text));
}

void ReadLocation(Reader& reader, machine::Adapter& adapter) {
    const std::string what = Of(adapter, "LocationInformation of HKEY_LOCAL_MACHINE\\" +
                                             sys::DeviceKey(*adapter.pnpDeviceId));
    const auto read = [&adapter] {
        adapter.pciLocation = sys::ReadLocationInformation(*adapter.pnpDeviceId);
    };
    // The module reads it for PCI adapters, and fails where there is none.
    if (adapter.pnpDeviceId->starts_with("PCI")) {
        reader.Read(what, read);
    } else {
        reader.ReadIfThere(what, read);
    }
}

void ReadHardware(Reader& reader, machine::Adapter& adapter) {
    adapter.settingId = ReadText(reader, adapter, "SettingID", sys::getSettingId);
    adapter.pnpDeviceId = ReadText(reader, adapter, "PNPDeviceID", sys::getPnpDeviceId);
    adapter.caption = ReadText(reader, adapter, "Caption", sys::getCaption);
    adapter.macAddress = ReadText(reader, adapter, "MACAddress", sys::getMacAddress);
    std::string type;
    std::string manufacturer;
    reader.Query(Of(adapter, "AdapterType and Manufacturer"), [&] {
        return sys::getAdapterTypeAndManufacturer(adapter.index, type, manufacturer);
    });
    adapter.adapterType = NullWhenEmpty(std::move(type));
    adapter.manufacturer = NullWhenEmpty(std::move(manufacturer));
    if (adapter.pnpDeviceId) {
        ReadLocation(reader, adapter);
    }
}

void ReadAddressing(Reader& reader, machine::Adapter& adapter) {
    reader.Query(Of(adapter, "DHCPEnabled"), [&] {
        bool dhcp = false;
        const sys::Result result = sys::getDhcpEnabled(adapter.index, dhcp);
        if (result >= 0) {
            adapter.dhcpEnabled = dhcp;
        }
        return result;
    });
    ipc::IPv4Address address;
    ipc::IPv4Address mask;
    reader.Query(Of(adapter, "IPAddress and IPSubnet"), [&] {
        const sys::Result result = sys::getIpAddressAndMask(adapter.index, address, mask);
        if (address.NetworkOrder() != 0) {
            adapter.ipAddress = Texts{address.ToString()};
            adapter.ipSubnet = Texts{mask.ToString()};
        }
        return result;
    });
    std::vector<ipc::IPv4Address> gateways;
    reader.Query(Of(adapter, "DefaultIPGateway"),
                 [&] { return sys::getGateways(adapter.index, gateways); });
    adapter.gateways = NullWhenEmpty(TextsOf(gateways));
}

void ReadNames(Reader& reader, machine::Adapter& adapter, machine::State& state) {
    std::vector<ipc::IPv4Address> servers;
    Texts suffixes;
    reader.Query(Of(adapter, "DNSServerSearchOrder and DNSDomainSuffixSearchOrder"),
                 [&] { return sys::getDnsServersAndSuffixes(adapter.index, servers, suffixes); });
    adapter.dnsServers = NullWhenEmpty(TextsOf(servers));
    if (state.dnsSuffixes.empty()) {
        state.dnsSuffixes = std::move(suffixes);  // the machine's, shown with every adapter
    }
    std::string domain;
    std::string hostName;
    reader.Query(Of(adapter, "DNSDomain and DNSHostName"),
                 [&] { return sys::getDnsDomainAndHostName(adapter.index, domain, hostName); });
    adapter.dnsDomain = NullWhenEmpty(std::move(domain));
    adapter.dnsHostName = NullWhenEmpty(std::move(hostName));
    if (adapter.settingId) {
        reader.ReadIfThere(
            Of(adapter,
               "NameServer of HKEY_LOCAL_MACHINE\\" + sys::InterfaceKey(*adapter.settingId)),
            [&] { adapter.staticDns = SplitServers(sys::ReadNameServer(*adapter.settingId)); });
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
    lease.dnsDomain = adapter.dnsDomain;
}

void ReadAdapters(Reader& reader, machine::State& state) {
    std::vector<std::uint32_t> indexes;
    reader.Query("The list of adapters", [&] { return sys::getIpEnabledAdapters(indexes); });
    for (const std::uint32_t index : indexes) {
        machine::Adapter adapter;
        adapter.index = index;
        ReadHardware(reader, adapter);
        ReadAddressing(reader, adapter);
        ReadNames(reader, adapter, state);
        GuessLease(adapter);
        state.adapters.push_back(std::move(adapter));
    }
}

void ReadRoutes(Reader& reader, machine::State& state) {
    std::vector<sys::RouteRecord> routes;
    reader.Query("The table of persistent routes", [&] { return sys::getStaticRoutes(routes); });
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
    std::optional<bool> member;
    reader.Read("The membership", [&] { member = domain.IsDomainMember(); });
    if (!member) {
        return;
    }
    if (!*member) {
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
    reader.Query("The computer's name", [&] { return sys::getComputerName(state.computerName); });
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
