#include "machine/AdapterProperties.h"

namespace machine {

std::span<const AdapterProperty> AdapterProperties() {
    static constexpr AdapterProperty kProperties[] = {
        {"index", &Adapter::index, "Index", "Index"},
        {"connectionName", &Adapter::connectionName, "", "NetConnectionID"},
        {"settingId", &Adapter::settingId, "SettingID", "GUID"},
        {"pnpDeviceId", &Adapter::pnpDeviceId, "", "PNPDeviceID"},
        {"pciLocation", &Adapter::pciLocation, "", ""},
        {"caption", &Adapter::caption, "Caption", "Caption"},
        {"manufacturer", &Adapter::manufacturer, "", "Manufacturer"},
        {"adapterType", &Adapter::adapterType, "", "AdapterType"},
        {"macAddress", &Adapter::macAddress, "MACAddress", "MACAddress"},
        {"condition", &Adapter::condition, "", ""},
        {"ipEnabled", &Adapter::ipEnabled, "IPEnabled", "NetEnabled"},
        {"dhcpEnabled", &Adapter::dhcpEnabled, "DHCPEnabled", ""},
        {"ipAddress", &Adapter::ipAddress, "IPAddress", ""},
        {"ipSubnet", &Adapter::ipSubnet, "IPSubnet", ""},
        {"gateways", &Adapter::gateways, "DefaultIPGateway", ""},
        {"dnsServers", &Adapter::dnsServers, "DNSServerSearchOrder", ""},
        {"dnsDomain", &Adapter::dnsDomain, "DNSDomain", ""},
        {"dnsHostName", &Adapter::dnsHostName, "DNSHostName", ""},
        {"staticDns", &Adapter::staticDns, "", ""},
        {"dhcpLease", &Adapter::dhcpLease, "", ""},
        {"leaseDueIn", &Adapter::leaseDueIn, "", ""},
    };
    return kProperties;
}

}  // namespace machine
