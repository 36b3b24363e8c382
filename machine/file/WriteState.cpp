// From a machine's state to JSON, and between JSON and files.
#include <fstream>
#include <iterator>

#include "machine/CodePage.h"
#include "machine/MachineFile.h"
#include "machine/file/JsonReader.h"
#include "machine/file/RegistryFile.h"

namespace machine::file {
namespace {

Json Write(const std::string& text) {
    return ToUtf8(text);
}
Json Write(bool flag) {
    return flag;
}

Json Write(const TextList& list) {
    Json json = Json::array();
    for (const std::string& text : list) {
        json.push_back(ToUtf8(text));
    }
    return json;
}

Json Write(const DhcpLease& lease);
Json Write(const Adapter& adapter);
Json Write(const PersistedRoute& route);
Json Write(const Account& account);
Json Write(const OrganizationalUnit& unit);
Json Write(const Domain& domain);
Json Write(const Membership& membership);

template <typename Value>
Json Write(const std::optional<Value>& value) {
    return value ? Write(*value) : Json();
}

template <typename Value>
Json WriteList(const std::vector<Value>& list) {
    Json json = Json::array();
    for (const Value& value : list) {
        json.push_back(Write(value));
    }
    return json;
}

Json Write(const DhcpLease& lease) {
    return {{"ipAddress", Write(lease.ipAddress)},
            {"ipSubnet", Write(lease.ipSubnet)},
            {"gateways", Write(lease.gateways)},
            {"dnsServers", Write(lease.dnsServers)},
            {"dnsDomain", Write(lease.dnsDomain)}};
}

Json Write(const Adapter& adapter) {
    return {{"index", adapter.index},
            {"connectionName", Write(adapter.connectionName)},
            {"settingId", Write(adapter.settingId)},
            {"pnpDeviceId", Write(adapter.pnpDeviceId)},
            {"pciLocation", Write(adapter.pciLocation)},
            {"caption", Write(adapter.caption)},
            {"manufacturer", Write(adapter.manufacturer)},
            {"adapterType", Write(adapter.adapterType)},
            {"macAddress", Write(adapter.macAddress)},
            {"ipEnabled", adapter.ipEnabled},
            {"dhcpEnabled", Write(adapter.dhcpEnabled)},
            {"ipAddress", Write(adapter.ipAddress)},
            {"ipSubnet", Write(adapter.ipSubnet)},
            {"gateways", Write(adapter.gateways)},
            {"dnsServers", Write(adapter.dnsServers)},
            {"dnsDomain", Write(adapter.dnsDomain)},
            {"dnsHostName", Write(adapter.dnsHostName)},
            {"staticDns", Write(adapter.staticDns)},
            {"dhcpLease", Write(adapter.dhcpLease)}};
}

Json Write(const PersistedRoute& route) {
    return {{"destination", Write(route.destination)},
            {"mask", Write(route.mask)},
            {"nextHop", Write(route.nextHop)},
            {"metric", route.metric}};
}

Json Write(const Account& account) {
    return {{"name", Write(account.name)},
            {"password", Write(account.password)},
            {"mayJoin", account.mayJoin},
            {"mayMove", account.mayMove}};
}

Json Write(const OrganizationalUnit& unit) {
    return {{"name", Write(unit.name)},
            {"computers", Write(unit.computers)},
            {"units", WriteList(unit.units)}};
}

Json Write(const Domain& domain) {
    return {{"dnsName", Write(domain.dnsName)},     {"flatName", Write(domain.flatName)},
            {"reachable", domain.reachable},        {"accounts", WriteList(domain.accounts)},
            {"computers", Write(domain.computers)}, {"units", WriteList(domain.units)}};
}

Json Write(const Membership& membership) {
    if (membership.member) {
        return {{"domain", Write(membership.domain)}, {"dnsDomain", Write(membership.dnsDomain)}};
    }
    return {{"workgroup", Write(membership.workgroup)}};
}

Json Write(const OperatingSystem& system) {
    const char* library = system.libCrypto == CryptoLibrary::Present  ? "present"
                          : system.libCrypto == CryptoLibrary::Absent ? "absent"
                                                                      : "withoutExport";
    return {{"libCrypto", library},
            {"comSecuritySet", system.comSecuritySet},
            {"adapterChangesNeedRestart", system.adapterChangesNeedRestart}};
}

Json WriteHosts(const std::vector<HostName>& hosts) {
    Json json = Json::object();
    for (const HostName& host : hosts) {
        json[ToUtf8(host.name)] = Write(host.addresses);
    }
    return json;
}

Json WriteMachine(const State& state) {
    return {
        {"computerName", Write(state.computerName)},
        {"pendingComputerName", Write(state.pendingComputerName)},
        {"hostName", Write(state.hostName)},
        {"membership", Write(state.membership)},
        {"pendingMembership", Write(state.pendingMembership)},
        {"dnsSuffixes", Write(state.dnsSuffixes)},
        {"adapters", WriteList(state.adapters)},
        {"routes", WriteList(state.routes)},
        {"registry", WriteRegistry(state.registry)},
        {"domains", WriteList(state.domains)},
        {"hosts", WriteHosts(state.hosts)},
        {"system", Write(state.system)},
    };
}

}  // namespace
}  // namespace machine::file

namespace machine {

std::string FormatState(const State& state) {
    return file::WriteMachine(state).dump(4) + "\n";
}

State LoadState(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in) {
        throw MachineFileError(file.string() + ": cannot be read");
    }
    try {
        return ParseState(text);
    } catch (const MachineFileError& error) {
        throw MachineFileError(file.string() + ": " + error.what());
    }
}

}  // namespace machine
