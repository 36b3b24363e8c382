#include "machine/State.h"
#include "machine/model/Routes.h"

namespace machine {
namespace {

Adapter LeasedAdapter() {
    Adapter adapter;
    adapter.index = 1;
    adapter.connectionName = "Ethernet";
    adapter.settingId = "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E01}";
    adapter.pnpDeviceId = R"(PCI\VEN_8086&DEV_100E&SUBSYS_001E8086&REV_02\3&267A616A&0&08)";
    adapter.pciLocation = "PCI bus 2, device 1, function 0";
    adapter.caption = "[00000001] Example Gigabit Adapter";
    adapter.manufacturer = "Example Networks";
    adapter.adapterType = "Ethernet 802.3";
    adapter.macAddress = "02:00:00:00:00:01";
    adapter.dhcpEnabled = true;
    adapter.dhcpLease = DhcpLease{{"192.0.2.50"},
                                  {"255.255.255.0"},
                                  {"192.0.2.1"},
                                  {"192.0.2.10", "192.0.2.11"},
                                  "lab.example"};
    adapter.ipAddress = adapter.dhcpLease->ipAddress;
    adapter.ipSubnet = adapter.dhcpLease->ipSubnet;
    adapter.gateways = adapter.dhcpLease->gateways;
    adapter.dnsServers = adapter.dhcpLease->dnsServers;
    adapter.dnsDomain = adapter.dhcpLease->dnsDomain;
    adapter.dnsHostName = "WORKSTATION1";
    return adapter;
}

Adapter StaticAdapter() {
    Adapter adapter;
    adapter.index = 2;
    adapter.connectionName = "Ethernet 2";
    adapter.settingId = "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E02}";
    adapter.pnpDeviceId = R"(PCI\VEN_10EC&DEV_8168&SUBSYS_012310EC&REV_06\4&1D3C8F20&0&00E5)";
    // The form that newer drivers leave: a resource reference in front of the numbers.
    adapter.pciLocation =
        R"(@System32\drivers\pci.sys,#65536;PCI bus %1, device %2, function %3;(3,0,0))";
    adapter.caption = "[00000002] Example Fast Adapter";
    adapter.manufacturer = "Example Networks";
    adapter.adapterType = "Ethernet 802.3";
    adapter.macAddress = "02:00:00:00:00:02";
    adapter.dhcpEnabled = false;
    adapter.ipAddress = TextList{"198.51.100.20"};
    adapter.ipSubnet = TextList{"255.255.255.0"};
    adapter.gateways = TextList{"198.51.100.1"};
    adapter.staticDns = {"198.51.100.10"};
    adapter.dnsServers = adapter.staticDns;
    adapter.dnsHostName = "WORKSTATION1";
    adapter.dhcpLease = DhcpLease{
        {"198.51.100.77"}, {"255.255.255.0"}, {"198.51.100.1"}, {"198.51.100.10"}, std::nullopt};
    return adapter;
}

Adapter VirtualAdapter() {
    Adapter adapter;
    adapter.index = 7;
    adapter.connectionName = "Virtual Switch";
    adapter.settingId = "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E07}";
    adapter.pnpDeviceId = R"(ROOT\VIRTUALNET\0000)";
    adapter.caption = "[00000007] Example Virtual Adapter";
    adapter.manufacturer = "Example Networks";
    adapter.adapterType = "Ethernet 802.3";
    adapter.macAddress = "02:00:00:00:00:07";
    adapter.dhcpEnabled = false;
    adapter.ipAddress = TextList{"203.0.113.1"};
    adapter.ipSubnet = TextList{"255.255.255.240"};
    adapter.dnsHostName = "WORKSTATION1";
    return adapter;
}

Domain ExampleDomain() {
    Domain domain;
    domain.dnsName = "corp.example";
    domain.flatName = "CORP";
    domain.accounts = {{"joiner", "Join-Me-1", true, true},
                       {"visitor", "Look-Only-2", false, false}};
    domain.computers = {"PRINTSERVER"};
    OrganizationalUnit east{"East", {}, {{"Sales", {}, {}}, {"Support", {}, {}}}};
    OrganizationalUnit west{"West", {}, {}};
    domain.units = {std::move(east), std::move(west)};
    return domain;
}

}  // namespace

State DefaultState() {
    State state;
    state.computerName = "WORKSTATION1";
    state.hostName = "WORKSTATION1";
    state.adapters = {LeasedAdapter(), StaticAdapter(), VirtualAdapter()};
    state.routes = {{"10.20.0.0", "255.255.0.0", "198.51.100.254", 5}};
    state.domains = {ExampleDomain()};
    state.hosts = {{"gateway.lab.example", {"192.0.2.1"}}};
    model::PersistGateways(state);
    return state;
}

}  // namespace machine
