#include "common/sys/WmiQueries.h"

#include "common/sys/WmiConnection.h"
#include "common/sys/WmiValues.h"

namespace sys {

namespace {

using Visit = std::function<void(WmiRow&)>;

Result QueryMachine(const WmiQuery& query, WmiRows rows, const Visit& visit) {
    return ForEachRow(ScopedWmiComInit(), query, query.text, rows, visit);
}

Result QueryAdapter(const WmiQuery& query, std::uint32_t index, const Visit& visit) {
    return ForEachRow(ScopedWmiComInit(), query, query.text + std::to_string(index),
                      WmiRows::kFirst, visit);
}

void ReadFirstAddress(WmiRow& row, const wchar_t* property, ipc::IPv4Address& address) {
    // Attached as it is: for these two properties null is no empty list.
    row.Read(property, [&address](const VARIANT& value) {
        const SafeArrayView array(value);
        if (array.Size() > 0) {
            address.Resolve(array.Text(0));
        }
    });
}

void ReadAddresses(WmiRow& row, const wchar_t* property, std::vector<ipc::IPv4Address>& addresses) {
    row.Read(property, [&addresses](const VARIANT& value) {
        for (const ipc::IPv4Address& address : AddressesOf(value)) {
            addresses.push_back(address);
        }
    });
}

void ReadInteger(WmiRow& row, const wchar_t* property, std::uint32_t& integer) {
    row.Read(property, [&integer](const VARIANT& value) { integer = IntegerOf(value); });
}

}  // namespace

Result getComputerName(std::string& name) {
    static constexpr WmiQuery kQuery = {"select Name from Win32_ComputerSystem",
                                        {"Wmi query failed to get computer name", 101}};
    return QueryMachine(kQuery, WmiRows::kFirst,
                        [&name](WmiRow& row) { row.ReadText(L"Name", name); });
}

Result getIpEnabledAdapters(std::vector<std::uint32_t>& indexes) {
    // SettingID is asked for and not read.
    static constexpr WmiQuery kQuery = {
        "select Index, SettingID from Win32_NetworkAdapterConfiguration where IPEnabled=true",
        {"Wmi query failed to IP enabled devices", 165}};
    return QueryMachine(kQuery, WmiRows::kAll, [&indexes](WmiRow& row) {
        row.Read(L"Index",
                 [&indexes](const VARIANT& value) { indexes.push_back(IntegerOf(value)); });
    });
}

Result getDhcpEnabled(std::uint32_t index, bool& enabled) {
    static constexpr WmiQuery kQuery = {
        "select DHCPEnabled from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi DHCP enabled query failed", 225}};
    return QueryAdapter(kQuery, index, [&enabled](WmiRow& row) {
        row.Read(L"DHCPEnabled", [&enabled](const VARIANT& value) { enabled = BooleanOf(value); });
    });
}

Result getIpAddressAndMask(std::uint32_t index, ipc::IPv4Address& address, ipc::IPv4Address& mask) {
    static constexpr WmiQuery kQuery = {
        "select IPAddress, IPSubnet from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get ip address and mask", 297}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        ReadFirstAddress(row, L"IPAddress", address);
        ReadFirstAddress(row, L"IPSubnet", mask);
    });
}

Result getDnsServersAndSuffixes(std::uint32_t index, std::vector<ipc::IPv4Address>& servers,
                                std::vector<std::string>& suffixes) {
    static constexpr WmiQuery kQuery = {
        "select DNSServerSearchOrder, DNSDomainSuffixSearchOrder from "
        "Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get DNS servers and suffixes", 455}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        ReadAddresses(row, L"DNSServerSearchOrder", servers);
        row.Read(L"DNSDomainSuffixSearchOrder", [&suffixes](const VARIANT& value) {
            for (std::string& suffix : TextsOf(value)) {
                suffixes.push_back(std::move(suffix));
            }
        });
    });
}

Result getSettingId(std::uint32_t index, std::string& settingId) {
    static constexpr WmiQuery kQuery = {
        "select SettingID from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get Setting ID", 521}};
    return QueryAdapter(kQuery, index,
                        [&settingId](WmiRow& row) { row.ReadText(L"SettingID", settingId); });
}

Result getDnsDomainAndHostName(std::uint32_t index, std::string& domain, std::string& hostName) {
    static constexpr WmiQuery kQuery = {
        "select DNSDomain, DNSHostName from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get DNS domain and computer host name", 595}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        row.ReadText(L"DNSDomain", domain);
        row.ReadText(L"DNSHostName", hostName);
    });
}

Result getGateways(std::uint32_t index, std::vector<ipc::IPv4Address>& gateways) {
    static constexpr WmiQuery kQuery = {
        "select DefaultIPGateway from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get gateways", 667}};
    return QueryAdapter(kQuery, index, [&gateways](WmiRow& row) {
        ReadAddresses(row, L"DefaultIPGateway", gateways);
    });
}

Result getMacAddress(std::uint32_t index, std::string& macAddress) {
    static constexpr WmiQuery kQuery = {
        "select MACAddress from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get MAC address", 733}};
    return QueryAdapter(kQuery, index,
                        [&macAddress](WmiRow& row) { row.ReadText(L"MACAddress", macAddress); });
}

Result getAdapterTypeAndManufacturer(std::uint32_t index, std::string& type,
                                     std::string& manufacturer) {
    static constexpr WmiQuery kQuery = {
        "select AdapterType, Manufacturer from Win32_NetworkAdapter where Index=",
        {"Wmi query failed to get NIC type and manufacturer", 807}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        row.ReadText(L"AdapterType", type);
        row.ReadText(L"Manufacturer", manufacturer);
    });
}

Result getCaption(std::uint32_t index, std::string& caption) {
    static constexpr WmiQuery kQuery = {"select Caption from Win32_NetworkAdapter where Index=",
                                        {"Wmi query failed to get NIC caption", 873}};
    return QueryAdapter(kQuery, index,
                        [&caption](WmiRow& row) { row.ReadText(L"Caption", caption); });
}

Result getPnpDeviceId(std::uint32_t index, std::string& deviceId) {
    static constexpr WmiQuery kQuery = {"select PNPDeviceID from Win32_NetworkAdapter where Index=",
                                        {"Wmi query failed to get PNP device id", 939}};
    return QueryAdapter(kQuery, index,
                        [&deviceId](WmiRow& row) { row.ReadText(L"PNPDeviceID", deviceId); });
}

Result getStaticRoutes(std::vector<RouteRecord>& routes) {
    static constexpr WmiQuery kQuery = {
        "select Destination, Mask, NextHop, Metric1 from Win32_IP4PersistedRouteTable",
        {"Wmi query failed to get static routes", 1037}};
    return QueryMachine(kQuery, WmiRows::kAll, [&routes](WmiRow& row) {
        RouteRecord route;
        row.ReadAddress(L"Destination", route.destination);
        row.ReadAddress(L"Mask", route.mask);
        row.ReadAddress(L"NextHop", route.nextHop);
        ReadInteger(row, L"Metric1", route.metric);
        routes.push_back(route);
    });
}

}  // namespace sys
