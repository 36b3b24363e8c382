#include "host/snapshot/Snapshot.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "common/err/GeneralError.h"
#include "common/sys/Domain.h"
#include "common/sys/RegistryText.h"
#include "common/sys/Wmi.h"
#include "common/sys/WmiQueries.h"
#include "common/sys/nic/NicRegistry.h"
#include "host/snapshot/ReadFailure.h"
#include "machine/model/AdapterView.h"
#include "machine/model/Address.h"
#include "machine/model/RegistryView.h"
#include "machine/model/Routes.h"

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

    void Say(const std::string& note) { notes_.push_back(note); }

private:
    void Note(const std::string& what, const std::string& why) {
        notes_.push_back(what + " cannot be read: " + why);
    }

    Texts& notes_;
};

std::optional<std::string> NullWhenEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

std::optional<Texts> NullWhenEmpty(Texts texts) {
    return texts.empty() ? std::nullopt : std::optional(std::move(texts));
}

/// A list of the registry, separated by commas or blanks.
Texts SplitList(const std::string& text) {
    Texts items;
    std::string item;
    for (const char character : text + " ") {
        if (character != ' ' && character != ',') {
            item += character;
        } else if (!item.empty()) {
            items.push_back(std::exchange(item, {}));
        }
    }
    return items;
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
    if (machine::model::IsPci(adapter)) {
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

struct List {
    const wchar_t* property;
    std::optional<Texts>* target;
};

/// Every element, as it stands there: the module's own queries take the first address alone, and
/// make addresses of texts.
void ReadLists(Reader& reader, const machine::Adapter& adapter, const char* what,
               const std::vector<List>& lists) {
    static constexpr sys::WmiQuery kQuery = {
        "select IPAddress, IPSubnet, DefaultIPGateway, DNSServerSearchOrder from "
        "Win32_NetworkAdapterConfiguration where Index=",
        {"the lists of an adapter", 0}};
    reader.Query(Of(adapter, what), [&] {
        return sys::RunWmiQuery(kQuery, kQuery.text + std::to_string(adapter.index),
                                sys::WmiRows::kFirst, [&lists](sys::WmiRow& row) {
                                    for (const List& list : lists) {
                                        Texts texts;
                                        row.ReadTexts(list.property, texts);
                                        *list.target = NullWhenEmpty(std::move(texts));
                                    }
                                });
    });
}

/// Windows knows it of adapters without IP too.
void ReadDhcp(Reader& reader, machine::Adapter& adapter) {
    reader.Query(Of(adapter, "DHCPEnabled"), [&] {
        bool dhcp = false;
        const sys::Result result = sys::getDhcpEnabled(adapter.index, dhcp);
        if (result >= 0) {
            adapter.dhcpEnabled = dhcp;
        }
        return result;
    });
}

void ReadAddressing(Reader& reader, machine::Adapter& adapter) {
    ReadDhcp(reader, adapter);
    ReadLists(reader, adapter, "IPAddress and IPSubnet",
              {{L"IPAddress", &adapter.ipAddress}, {L"IPSubnet", &adapter.ipSubnet}});
    ReadLists(reader, adapter, "DefaultIPGateway", {{L"DefaultIPGateway", &adapter.gateways}});
}

void ReadNames(Reader& reader, machine::Adapter& adapter) {
    ReadLists(reader, adapter, "DNSServerSearchOrder",
              {{L"DNSServerSearchOrder", &adapter.dnsServers}});
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
            [&] { adapter.staticDns = SplitList(sys::ReadNameServer(*adapter.settingId)); });
    }
}

/// What DHCP gave last is the best guess at what it gives next. Gateways with a persistent route
/// were set by hand, and what is of IPv6 comes with router advertisements.
void GuessLease(const machine::State& state, machine::Adapter& adapter) {
    if (!adapter.dhcpEnabled.value_or(false) || !adapter.ipEnabled) {
        return;
    }
    machine::DhcpLease& lease = adapter.dhcpLease.emplace();
    const Texts addresses = adapter.ipAddress.value_or(Texts());
    const Texts masks = adapter.ipSubnet.value_or(Texts());
    for (std::size_t i = 0; i < std::min(addresses.size(), masks.size()); ++i) {
        if (!machine::model::IsIPv6(addresses[i])) {
            lease.ipAddress.push_back(addresses[i]);
            lease.ipSubnet.push_back(masks[i]);
        }
    }
    lease.gateways = adapter.gateways.value_or(Texts());
    std::erase_if(lease.gateways, [&](const std::string& gateway) {
        return machine::model::IsIPv6(gateway) || machine::model::IsSetByHand(state, gateway);
    });
    lease.dnsServers = adapter.staticDns.empty() ? adapter.dnsServers.value_or(Texts()) : Texts();
    lease.dnsDomain = adapter.dnsDomain;
}

/// PCI adapters without IP: no section gets one of them, and which one another gets depends on
/// them. Their settings cannot be seen.
void ReadUnusedAdapters(Reader& reader, machine::State& state) {
    static constexpr sys::WmiQuery kQuery = {"select Index, PNPDeviceID from Win32_NetworkAdapter",
                                             {"the list of all adapters", 0}};
    reader.Query("The list of adapters without IP", [&] {
        return sys::RunWmiQuery(kQuery, kQuery.text, sys::WmiRows::kAll,
                                [&state](sys::WmiRow& row) {
                                    machine::Adapter adapter;
                                    row.ReadInteger(L"Index", adapter.index);
                                    row.ReadText(L"PNPDeviceID", adapter.pnpDeviceId.emplace());
                                    if (machine::model::IsPci(adapter) &&
                                        FindAdapter(state, adapter.index) == nullptr) {
                                        adapter.condition = machine::Condition::kUnplugged;
                                        state.adapters.push_back(adapter);
                                    }
                                });
    });
    for (machine::Adapter& adapter : state.adapters) {
        if (adapter.condition == machine::Condition::kUnplugged) {
            ReadHardware(reader, adapter);
            ReadDhcp(reader, adapter);
            reader.Say(Of(adapter,
                          "has no IP and is taken for unplugged; it may be disabled, in a "
                          "team or behind a virtual switch. Its settings are not seen"));
        }
    }
    std::ranges::stable_sort(state.adapters, {}, &machine::Adapter::index);
}

void ReadAdapters(Reader& reader, machine::State& state) {
    std::vector<std::uint32_t> indexes;
    reader.Query("The list of adapters", [&] { return sys::getIpEnabledAdapters(indexes); });
    for (const std::uint32_t index : indexes) {
        machine::Adapter adapter;
        adapter.index = index;
        ReadHardware(reader, adapter);
        ReadAddressing(reader, adapter);
        ReadNames(reader, adapter);
        state.adapters.push_back(std::move(adapter));
    }
}

/// WMI shows the suffixes that count: the list of a policy, one's own, or those of the connections.
/// The machine has the first two, where they stand.
void ReadSuffixes(Reader& reader, machine::State& state) {
    const std::string own = machine::model::kParametersKey;
    reader.ReadIfThere("SearchList of HKEY_LOCAL_MACHINE\\" + own, [&] {
        state.dnsSuffixes = SplitList(sys::ReadLocalMachineText(own, "SearchList"));
    });
    const std::string policy = machine::model::kDnsPolicyKey;
    reader.ReadIfThere("SearchList of HKEY_LOCAL_MACHINE\\" + policy, [&] {
        const std::string list = sys::ReadLocalMachineText(policy, "SearchList");
        state.registry.push_back({policy, {machine::RegistryValue::Text("SearchList", list)}});
    });
}

void ReadRoutes(Reader& reader, machine::State& state) {
    std::vector<sys::RouteRecord> routes;
    reader.Query("The table of persistent routes", [&] { return sys::getStaticRoutes(routes); });
    for (const sys::RouteRecord& route : routes) {
        state.routes.push_back({route.destination.ToString(), route.mask.ToString(),
                                route.nextHop.ToString(), static_cast<std::int32_t>(route.metric)});
    }
}

/// Where the gateways set by hand lack their rows, a machine file is not what this machine has.
void NoteMissingRoutes(Reader& reader, const machine::State& state) {
    machine::State filed = state;
    machine::model::PersistGateways(filed);
    if (filed.routes != state.routes) {
        reader.Say(
            "A gateway set by hand has no persistent route here; a machine file gives it one");
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
    ReadSuffixes(reader, state);
    ReadRoutes(reader, state);
    NoteMissingRoutes(reader, state);
    for (machine::Adapter& adapter : state.adapters) {
        GuessLease(state, adapter);
    }
    ReadUnusedAdapters(reader, state);
    ReadMembership(reader, state);
    return snapshot;
}

}  // namespace host::snapshot
