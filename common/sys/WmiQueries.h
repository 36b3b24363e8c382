#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/ipc/IpAddress.h"
#include "common/sys/Wmi.h"

/// What this module reads through Windows Management Instrumentation ("root\cimv2"). Every function
/// opens its own connection and closes it before it returns.
///
/// Result: the HRESULT of the last read, 0 when no row came back. Outputs keep their values where
/// no row came back or the property could not be read; lists are appended to. A null text is an
/// empty text (an address of it 255.255.255.255, as of any text that is none), a null list an empty
/// list.
///
/// A query that fails, or a row that cannot be fetched, throws CWmiError; a list then holds the
/// rows before it. A property that is there and cannot be changed to text throws ComError; a list
/// that is no one-dimensional array throws std::invalid_argument; a host name in an address list
/// that does not resolve throws ipc::CIPAddressError.
///
/// `index` is the adapter's Index in Win32_NetworkAdapterConfiguration and Win32_NetworkAdapter.
namespace sys {

/// One row of Win32_IP4PersistedRouteTable.
struct RouteRecord {
    ipc::IPv4Address destination;
    ipc::IPv4Address mask;
    ipc::IPv4Address nextHop;
    std::uint32_t metric = 0;
};

Result getComputerName(std::string& name);
Result getIpEnabledAdapters(std::vector<std::uint32_t>& indexes);
Result getDhcpEnabled(std::uint32_t index, bool& enabled);
/// The first element of each list. Unlike the other lists these two must be arrays: null throws.
Result getIpAddressAndMask(std::uint32_t index, ipc::IPv4Address& address, ipc::IPv4Address& mask);
Result getDnsServersAndSuffixes(std::uint32_t index, std::vector<ipc::IPv4Address>& servers,
                                std::vector<std::string>& suffixes);
Result getSettingId(std::uint32_t index, std::string& settingId);
Result getDnsDomainAndHostName(std::uint32_t index, std::string& domain, std::string& hostName);
Result getGateways(std::uint32_t index, std::vector<ipc::IPv4Address>& gateways);
Result getMacAddress(std::uint32_t index, std::string& macAddress);
Result getAdapterTypeAndManufacturer(std::uint32_t index, std::string& type,
                                     std::string& manufacturer);
Result getCaption(std::uint32_t index, std::string& caption);
Result getPnpDeviceId(std::uint32_t index, std::string& deviceId);
Result getStaticRoutes(std::vector<RouteRecord>& routes);

}  // namespace sys
