#include "common/sys/WmiQueries.h"

#include "common/sys/Wmi.h"

namespace sys {

namespace {

// A query's line tells in a report, beside the source "Wmi", which query failed. It is data: it
// does not move with the code, and no other query or method has it. A new query takes a number
// above the last one here and below the first one in WmiMethods.cpp; a new method one above the
// last one there.

using Visit = std::function<void(WmiRow&)>;

Result QueryMachine(const WmiQuery& query, WmiRows rows, const Visit& visit) {
    return RunWmiQuery(query, query.text, rows, visit);
}

Result QueryAdapter(const WmiQuery& query, std::uint32_t index, const Visit& visit) {
    return RunWmiQuery(query, query.text + std::to_string(index), WmiRows::kFirst, visit);
}

}  // namespace

Result getComputerName(std::string& name) {
    static constexpr WmiQuery kQuery = {kComputerNameQuery,
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
        std::uint32_t index = 0;
        if (row.ReadInteger(L"Index", index)) {
            indexes.push_back(index);
        }
    });
}

Result getDhcpEnabled(std::uint32_t index, bool& enabled) {
    static constexpr WmiQuery kQuery = {
        "select DHCPEnabled from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi DHCP enabled query failed", 225}};
    return QueryAdapter(kQuery, index,
                        [&enabled](WmiRow& row) { row.ReadBoolean(L"DHCPEnabled", enabled); });
}

Result getIpAddressAndMask(std::uint32_t index, ipc::IPv4Address& address, ipc::IPv4Address& mask) {
    static constexpr WmiQuery kQuery = {
        "select IPAddress, IPSubnet from Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get ip address and mask", 297}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        row.ReadFirstAddress(L"IPAddress", address);
        row.ReadFirstAddress(L"IPSubnet", mask);
    });
}

Result getDnsServersAndSuffixes(std::uint32_t index, std::vector<ipc::IPv4Address>& servers,
                                std::vector<std::string>& suffixes) {
    static constexpr WmiQuery kQuery = {
        "select DNSServerSearchOrder, DNSDomainSuffixSearchOrder from "
        "Win32_NetworkAdapterConfiguration where Index=",
        {"Wmi query failed to get DNS servers and suffixes", 455}};
    return QueryAdapter(kQuery, index, [&](WmiRow& row) {
        row.ReadAddresses(L"DNSServerSearchOrder", servers);
        row.ReadTexts(L"DNSDomainSuffixSearchOrder", suffixes);
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
        row.ReadAddresses(L"DefaultIPGateway", gateways);
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
        row.ReadInteger(L"Metric1", route.metric);
        routes.push_back(route);
    });
}

}  // namespace sys
