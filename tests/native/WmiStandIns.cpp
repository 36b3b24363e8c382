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

constexpr std::int32_t kFileNotFound = 2;

std::string Number(std::uint32_t number) {
    return std::to_string(number);
}

/// Writes the query down and calls `read` with the adapter, if there is one of that index.
template <class Read>
Result QueryAdapter(const char* function, std::uint32_t index, Read read) {
    fake::NoteQuery(function, Number(index));
    for (const Adapter& adapter : TheMachine().adapters) {
        if (adapter.index == index) {
            read(adapter);
            break;
        }
    }
    return 0;
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

/// The value, or the error of a key or value that is not there.
const std::string& Value(const std::optional<std::string>* value) {
    if (value == nullptr || !value->has_value()) {
        throw RegistryError("Open registry key failed", 0, 0, kFileNotFound);
    }
    return **value;
}

}  // namespace

Result getComputerName(std::string& name) {
    fake::NoteQuery("getComputerName");
    name = TheMachine().computerName;
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
    return QueryAdapter("getDhcpEnabled", index,
                        [&](const Adapter& adapter) { enabled = adapter.dhcpEnabled; });
}

Result getIpAddressAndMask(std::uint32_t index, ipc::IPv4Address& address, ipc::IPv4Address& mask) {
    return QueryAdapter("getIpAddressAndMask", index, [&](const Adapter& adapter) {
        ReadFirst(adapter.addresses, address);
        ReadFirst(adapter.masks, mask);
    });
}

Result getDnsServersAndSuffixes(std::uint32_t index, std::vector<ipc::IPv4Address>& servers,
                                std::vector<std::string>& suffixes) {
    return QueryAdapter("getDnsServersAndSuffixes", index, [&](const Adapter& adapter) {
        Append(adapter.dnsServers, servers);
        suffixes.insert(suffixes.end(), adapter.dnsSuffixes.begin(), adapter.dnsSuffixes.end());
    });
}

Result getSettingId(std::uint32_t index, std::string& settingId) {
    return QueryAdapter("getSettingId", index,
                        [&](const Adapter& adapter) { settingId = adapter.settingId; });
}

Result getDnsDomainAndHostName(std::uint32_t index, std::string& domain, std::string& hostName) {
    return QueryAdapter("getDnsDomainAndHostName", index, [&](const Adapter& adapter) {
        domain = adapter.dnsDomain;
        hostName = adapter.dnsHostName;
    });
}

Result getGateways(std::uint32_t index, std::vector<ipc::IPv4Address>& gateways) {
    return QueryAdapter("getGateways", index,
                        [&](const Adapter& adapter) { Append(adapter.gateways, gateways); });
}

Result getMacAddress(std::uint32_t index, std::string& macAddress) {
    return QueryAdapter("getMacAddress", index,
                        [&](const Adapter& adapter) { macAddress = adapter.macAddress; });
}

Result getAdapterTypeAndManufacturer(std::uint32_t index, std::string& type,
                                     std::string& manufacturer) {
    return QueryAdapter("getAdapterTypeAndManufacturer", index, [&](const Adapter& adapter) {
        type = adapter.adapterType;
        manufacturer = adapter.manufacturer;
    });
}

Result getCaption(std::uint32_t index, std::string& caption) {
    return QueryAdapter("getCaption", index,
                        [&](const Adapter& adapter) { caption = adapter.caption; });
}

Result getPnpDeviceId(std::uint32_t index, std::string& deviceId) {
    return QueryAdapter("getPnpDeviceId", index,
                        [&](const Adapter& adapter) { deviceId = adapter.pnpDeviceId; });
}

Result getStaticRoutes(std::vector<RouteRecord>& routes) {
    fake::NoteQuery("getStaticRoutes");
    routes.insert(routes.end(), TheMachine().routes.begin(), TheMachine().routes.end());
    return 0;
}

std::string readLocationInformation(const std::string& pnpDeviceId) {
    fake::NoteQuery("readLocationInformation", pnpDeviceId);
    const std::optional<std::string>* value = nullptr;
    for (const Adapter& adapter : TheMachine().adapters) {
        value = adapter.pnpDeviceId == pnpDeviceId ? &adapter.locationInformation : value;
    }
    return Value(value);
}

std::string readNameServer(const std::string& settingId) {
    fake::NoteQuery("readNameServer", settingId);
    const std::optional<std::string>* value = nullptr;
    for (const Adapter& adapter : TheMachine().adapters) {
        value = adapter.settingId == settingId ? &adapter.nameServer : value;
    }
    return Value(value);
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
