#include "common/sys/WmiMethods.h"

#include "common/sys/Wmi.h"

namespace sys {

namespace {

// Spelled with a capital W, unlike the object paths; WMI does not regard case.
constexpr const wchar_t* kAdapterClass = L"Win32_NetWorkAdapterConfiguration";
constexpr const wchar_t* kComputerClass = L"Win32_ComputerSystem";

std::uint32_t CallAdapter(const WmiMethod& method, std::uint32_t index,
                          const std::function<void(WmiInParameters&)>& fill) {
    return RunWmiMethod(method, "Win32_NetworkAdapterConfiguration.Index=" + std::to_string(index),
                        fill);
}

}  // namespace

std::uint32_t renameComputer(const std::string& newName, const std::string& userName,
                             const std::string& password) {
    static constexpr WmiMethod kMethod = {
        kComputerClass, L"Rename", {"Wmi method failed to set computer name", 1219}};
    return RunComputerMethod(kMethod, [&](WmiInParameters& in) {
        in.PutText(L"Name", newName);
        in.PutText(L"UserName", userName);
        in.PutSecret(L"Password", password);
    });
}

std::uint32_t enableDhcp(std::uint32_t index) {
    static constexpr WmiMethod kMethod = {
        kAdapterClass, L"EnableDHCP", {"Wmi method failed to enable DHCP", 1289}};
    return CallAdapter(kMethod, index, nullptr);
}

std::uint32_t enableStatic(std::uint32_t index, const std::vector<ipc::IPv4Address>& addresses,
                           const std::vector<ipc::IPv4Address>& masks) {
    static constexpr WmiMethod kMethod = {
        kAdapterClass, L"EnableStatic", {"Wmi method failed to set static ip addresses", 1398}};
    return CallAdapter(kMethod, index, [&](WmiInParameters& in) {
        in.PutAddresses(L"IPAddress", addresses);
        in.PutAddresses(L"SubNetMask", masks);
    });
}

std::uint32_t setGateways(std::uint32_t index, const std::vector<ipc::IPv4Address>& gateways) {
    static constexpr WmiMethod kMethod = {
        kAdapterClass, L"SetGateways", {"Wmi method failed to set gateways", 1498}};
    return CallAdapter(kMethod, index, [&](WmiInParameters& in) {
        in.PutAddresses(L"DefaultIPGateway", gateways);
    });
}

std::uint32_t setDnsServerSearchOrder(std::uint32_t index,
                                      const std::vector<ipc::IPv4Address>& servers) {
    static constexpr WmiMethod kMethod = {kAdapterClass,
                                          L"SetDNSServerSearchOrder",
                                          {"Wmi method failed to configure DNS servers", 1591}};
    return CallAdapter(kMethod, index, [&](WmiInParameters& in) {
        in.PutAddresses(L"DNSServerSearchOrder", servers);
    });
}

std::uint32_t setDnsSuffixSearchOrder(const std::vector<std::string>& suffixes) {
    static constexpr WmiMethod kMethod = {kAdapterClass,
                                          L"SetDNSSuffixSearchOrder",
                                          {"Wmi method failed to configure DNS suffixes", 1680}};
    // A static method: the class itself is the object.
    return RunWmiMethod(kMethod, "Win32_NetWorkAdapterConfiguration", [&](WmiInParameters& in) {
        in.PutTexts(L"DNSDomainSuffixSearchOrder", suffixes);
    });
}

std::uint32_t joinDomainOrWorkgroup(const std::string& name, const std::string& userName,
                                    const std::string& password, const std::string& accountOu,
                                    std::int32_t joinOptions) {
    static constexpr WmiMethod kMethod = {
        kComputerClass,
        L"JoinDomainOrWorkgroup",
        {"Wmi method failed to join the domain or workgroup", 1858}};
    return RunComputerMethod(kMethod, [&](WmiInParameters& in) {
        in.PutText(L"Name", name);
        in.PutText(L"UserName", userName);
        in.PutSecret(L"Password", password);
        in.PutText(L"AccountOU", accountOu);
        in.PutInteger(L"FJoinOptions", joinOptions);
    });
}

std::uint32_t unjoinDomainOrWorkgroup(const std::string& userName, const std::string& password,
                                      std::int32_t unjoinOptions) {
    static constexpr WmiMethod kMethod = {
        kComputerClass,
        L"UnjoinDomainOrWorkgroup",
        {"Wmi method failed to unjoin the domain or workgroup", 2008}};
    return RunComputerMethod(kMethod, [&](WmiInParameters& in) {
        in.PutText(L"UserName", userName);
        in.PutSecret(L"Password", password);
        in.PutInteger(L"FUnjoinOptions", unjoinOptions);
    });
}

}  // namespace sys
