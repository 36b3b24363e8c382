#include <algorithm>

#include "common/config/command/AddressList.h"
#include "common/err/GeneralError.h"
#include "common/sys/NicRegistry.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"
#include "tests/native/FakeMachine.h"

namespace sys {

namespace {

using config::command::JoinAddresses;
using config::command::JoinTexts;
using fake::Adapter;
using fake::TheMachine;

std::string Number(std::uint32_t number) {
    return std::to_string(number);
}

/// Writes the query down; the adapter of that index, or one of which nothing is known.
const Adapter& Query(const char* function, std::uint32_t index) {
    static const Adapter none;
    fake::NoteQuery(function, Number(index));
    const auto found = std::ranges::find(TheMachine().adapters, index, &Adapter::index);
    return found == TheMachine().adapters.end() ? none : *found;
}

void ReadFirst(const std::vector<std::string>& texts, ipc::IPv4Address& address) {
    if (!texts.empty()) {
        address.Resolve(texts.front());
    }
}

void Append(const std::vector<std::string>& texts, std::vector<ipc::IPv4Address>& addresses) {
    for (const std::string& text : texts) {
        addresses.emplace_back(text);
    }
}

std::uint32_t Change(const char* function, const std::string& arguments) {
    fake::NoteChange(function, arguments);
    return fake::ReturnOf(function);
}

/// A value of the adapter that the key names, or the error of a key or value that is not there.
std::string ReadValue(const char* function, const std::string& key, std::string Adapter::*name,
                      std::optional<std::string> Adapter::*value) {
    fake::NoteQuery(function, key);
    const auto found = std::ranges::find(TheMachine().adapters, key, name);
    if (found == TheMachine().adapters.end() || !((*found).*value).has_value()) {
        throw RegistryError("Open registry key failed", 0, 0, 2);
    }
    return *((*found).*value);
}

}  // namespace

Result getComputerName(std::string& name) {
    fake::NoteQuery("getComputerName");
    name = "PC1";
    return 0;
}

Result getIpEnabledAdapters(std::vector<std::uint32_t>& indexes) {
    fake::NoteQuery("getIpEnabledAdapters");
    for (const Adapter& adapter : TheMachine().adapters) {
        indexes.push_back(adapter.index);
    }
    return 0;
}

Result getDhcpEnabled(std::uint32_t index, bool& enabled) {
    enabled = Query("getDhcpEnabled", index).dhcpEnabled;
    return 0;
}

Result getIpAddressAndMask(std::uint32_t index, ipc::IPv4Address& address, ipc::IPv4Address& mask) {
    const Adapter& adapter = Query("getIpAddressAndMask", index);
    ReadFirst(adapter.addresses, address);
    ReadFirst(adapter.masks, mask);
    return 0;
}

Result getDnsServersAndSuffixes(std::uint32_t index, std::vector<ipc::IPv4Address>& servers,
                                std::vector<std::string>& suffixes) {
    const Adapter& adapter = Query("getDnsServersAndSuffixes", index);
    Append(adapter.dnsServers, servers);
    suffixes.insert(suffixes.end(), adapter.dnsSuffixes.begin(), adapter.dnsSuffixes.end());
    return 0;
}

Result getSettingId(std::uint32_t index, std::string& settingId) {
    settingId = Query("getSettingId", index).settingId;
    return 0;
}

Result getDnsDomainAndHostName(std::uint32_t index, std::string& domain, std::string& hostName) {
    const Adapter& adapter = Query("getDnsDomainAndHostName", index);
    domain = adapter.dnsDomain;
    hostName = adapter.dnsHostName;
    return 0;
}

Result getGateways(std::uint32_t index, std::vector<ipc::IPv4Address>& gateways) {
    Append(Query("getGateways", index).gateways, gateways);
    return 0;
}

Result getMacAddress(std::uint32_t index, std::string& macAddress) {
    macAddress = Query("getMacAddress", index).macAddress;
    return 0;
}

Result getAdapterTypeAndManufacturer(std::uint32_t index, std::string& type,
                                     std::string& manufacturer) {
    const Adapter& adapter = Query("getAdapterTypeAndManufacturer", index);
    type = adapter.adapterType;
    manufacturer = adapter.manufacturer;
    return 0;
}

Result getCaption(std::uint32_t index, std::string& caption) {
    caption = Query("getCaption", index).caption;
    return 0;
}

Result getPnpDeviceId(std::uint32_t index, std::string& deviceId) {
    deviceId = Query("getPnpDeviceId", index).pnpDeviceId;
    return 0;
}

Result getStaticRoutes(std::vector<RouteRecord>& routes) {
    fake::NoteQuery("getStaticRoutes");
    routes.insert(routes.end(), TheMachine().routes.begin(), TheMachine().routes.end());
    return 0;
}

std::string readLocationInformation(const std::string& pnpDeviceId) {
    return ReadValue("readLocationInformation", pnpDeviceId, &Adapter::pnpDeviceId,
                     &Adapter::locationInformation);
}

std::string readNameServer(const std::string& settingId) {
    return ReadValue("readNameServer", settingId, &Adapter::settingId, &Adapter::nameServer);
}

std::uint32_t renameComputer(const std::string& newName, const std::string& userName,
                             const std::string& password) {
    return Change("renameComputer", newName + ", " + userName + ":" + password);
}

std::uint32_t enableDhcp(std::uint32_t index) {
    return Change("enableDhcp", Number(index));
}

std::uint32_t enableStatic(std::uint32_t index, const std::vector<ipc::IPv4Address>& addresses,
                           const std::vector<ipc::IPv4Address>& masks) {
    return Change("enableStatic",
                  Number(index) + ", " + JoinAddresses(addresses) + ", " + JoinAddresses(masks));
}

std::uint32_t setGateways(std::uint32_t index, const std::vector<ipc::IPv4Address>& gateways) {
    return Change("setGateways", Number(index) + ", " + JoinAddresses(gateways));
}

std::uint32_t setDnsServerSearchOrder(std::uint32_t index,
                                      const std::vector<ipc::IPv4Address>& servers) {
    return Change("setDnsServerSearchOrder", Number(index) + ", " + JoinAddresses(servers));
}

std::uint32_t setDnsSuffixSearchOrder(const std::vector<std::string>& suffixes) {
    return Change("setDnsSuffixSearchOrder", JoinTexts(suffixes));
}

}  // namespace sys
