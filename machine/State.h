// The whole state of a simulated Windows machine as plain values: copy it to plan on a clone,
// compare two of them to see what a run changed, load and save it with MachineFile.h.
//
// An optional member without a value stands for a property that WMI delivers as NULL.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

using TextList = std::vector<std::string>;

/// What a DHCP server hands to the adapter whenever it asks.
struct DhcpLease {
    TextList ipAddress;
    TextList ipSubnet;
    TextList gateways;
    TextList dnsServers;
    std::optional<std::string> dnsDomain;

    bool operator==(const DhcpLease&) const = default;
};

// Where an adapter stands. Only a connected one has IP; what it had comes back when it is again.
enum class Condition { kConnected, kUnplugged, kDisabled, kInTeam, kBehindSwitch };

struct Adapter {
    std::uint32_t index = 0;                 ///< WMI index, unique on the machine
    std::string connectionName;              ///< as the network folder shows it: "Ethernet 2"
    std::optional<std::string> settingId;    ///< the interface's GUID text
    std::optional<std::string> pnpDeviceId;  ///< begins with "PCI\" for a PCI adapter
    std::optional<std::string> pciLocation;  ///< registry text "LocationInformation"
    std::optional<std::string> caption;      ///< "[00000001] Example Adapter"
    std::optional<std::string> manufacturer;
    std::optional<std::string> adapterType;
    std::optional<std::string> macAddress;
    Condition condition = Condition::kConnected;
    bool ipEnabled = true;  // whether TCP/IP is bound to it
    std::optional<bool> dhcpEnabled;
    std::optional<TextList> ipAddress;
    std::optional<TextList> ipSubnet;
    std::optional<TextList> gateways;
    std::optional<TextList> dnsServers;    ///< the servers in use, static or leased
    std::optional<std::string> dnsDomain;  ///< the connection's suffix; most adapters have none
    std::optional<std::string> dnsHostName;
    TextList staticDns;  ///< servers set by hand: registry text "NameServer"
    std::optional<DhcpLease> dhcpLease;
    std::optional<std::uint32_t> leaseDueIn;  // milliseconds; nothing: none is asked for

    bool operator==(const Adapter&) const = default;
};

struct PersistedRoute {
    std::string destination;
    std::string mask;
    std::string nextHop;
    std::int32_t metric = 1;

    bool operator==(const PersistedRoute&) const = default;
};

/// A registry value: its type (REG_SZ and so on) and its bytes as stored, terminators included.
struct RegistryValue {
    std::string name;  ///< empty: the key's default value
    std::uint32_t type = 1;
    std::string data;

    /// A REG_SZ value with its terminator.
    static RegistryValue Text(std::string_view name, std::string_view text);
    static RegistryValue Number(std::string_view name, std::uint32_t number);

    bool operator==(const RegistryValue&) const = default;
};

/// A key under HKEY_LOCAL_MACHINE. Its parents exist implicitly.
struct RegistryKey {
    std::string path;
    std::vector<RegistryValue> values;

    bool operator==(const RegistryKey&) const = default;
};

struct Account {
    std::string name;
    std::string password;
    bool mayJoin = true;    // join computers to the domain, rename them, let them leave
    bool mayMove = true;    // move computer objects between units
    bool mayReuse = false;  // take over computer objects that another account made
    // Computer objects that it may yet make; nothing: any number.
    std::optional<std::uint32_t> quota = std::nullopt;

    bool operator==(const Account&) const = default;
};

struct OrganizationalUnit {
    std::string name;  ///< "Sales", without "OU="
    TextList computers;
    std::vector<OrganizationalUnit> units;

    bool operator==(const OrganizationalUnit&) const = default;
};

// Who made a computer object.
struct ObjectOwner {
    std::string computer;
    std::string account;

    bool operator==(const ObjectOwner&) const = default;
};

struct Domain {
    std::string dnsName;    ///< "corp.example"
    std::string flatName;   ///< "CORP"
    bool reachable = true;  ///< whether a domain controller answers
    std::vector<Account> accounts;
    TextList computers;  ///< the container CN=Computers
    std::vector<OrganizationalUnit> units;
    std::vector<ObjectOwner> owners = {};  // of the objects whose maker is known
    // What every join gets, as when a port is closed on the way; 0: the domain decides.
    std::uint32_t joinAnswer = 0;
    // An account with a connection to the controller.
    std::optional<std::string> connectedAs = std::nullopt;

    bool operator==(const Domain&) const = default;
};

/// Where the machine belongs: to the domain `domain` (with `dnsDomain`), or to the workgroup
/// `workgroup`.
struct Membership {
    bool member = false;
    std::string workgroup = "WORKGROUP";  ///< of a machine outside any domain
    std::string domain;                   ///< flat name
    std::string dnsDomain;

    static Membership OfWorkgroup(std::string_view name);
    static Membership OfDomain(std::string_view flatName, std::string_view dnsName);

    bool operator==(const Membership&) const = default;
};

struct HostName {
    std::string name;
    TextList addresses;  ///< may be empty: the name resolves, to nothing

    bool operator==(const HostName&) const = default;
};

enum class CryptoLibrary { kPresent, kAbsent, kWithoutExport };

// Where versions of Windows differ. The defaults are what is met most often.
struct Versions {
    std::uint32_t staticOnStatic = 0;  // what EnableStatic answers on a static adapter: 0 or 81
    std::uint32_t refusedRoute = 0;    // the exit code of a refused route: 0 or 1
    std::uint32_t notElevated = 0x80041003;  // what methods answer without elevation: this or 91
    std::uint32_t leaseTakes = 5000;         // milliseconds
    // Milliseconds in which EnableStatic looks for another owner of the address (platform
    // knowledge: one to three seconds).
    std::uint32_t staticTakes = 2000;

    bool operator==(const Versions&) const = default;
};

struct OperatingSystem {
    CryptoLibrary libCrypto = CryptoLibrary::kPresent;
    /// True: the process set COM security before the module was loaded.
    bool comSecuritySet = false;
    /// True: the methods of adapters answer 1, done but a restart is needed, instead of 0.
    bool adapterChangesNeedRestart = false;
    bool elevated = true;            // false: the agent has no administrator's token
    std::uint32_t lockedCalls = 0;   // so many methods of adapters find the configuration locked
    bool workstationService = true;  // false: it is switched off
    Versions versions;

    bool operator==(const OperatingSystem&) const = default;
};

struct State {
    std::string computerName;
    std::optional<std::string> pendingComputerName;  ///< takes effect at the next restart
    std::string hostName;                            ///< TCP/IP host name
    Membership membership;
    std::optional<Membership> pendingMembership;  ///< takes effect at the next restart
    TextList dnsSuffixes;                         // the search list set by hand
    std::vector<Adapter> adapters;
    std::vector<PersistedRoute> routes;
    std::vector<RegistryKey> registry;
    std::vector<Domain> domains;
    std::vector<HostName> hosts;
    OperatingSystem system;

    bool operator==(const State&) const = default;
};

/// A workgroup computer with two PCI adapters (one on DHCP, one static) and a virtual one, beside a
/// domain corp.example that it may join.
State DefaultState();

/// Makes effective what waits for a restart: a new name, a new membership, renewed leases.
void ApplyRestart(State& state);

/// Null when the machine has no such adapter.
Adapter* FindAdapter(State& state, std::uint32_t index);

}  // namespace machine
