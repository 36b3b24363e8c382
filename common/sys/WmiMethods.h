#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "common/ipc/IpAddress.h"

/// What this module changes through Windows Management Instrumentation. Every function opens its
/// own connection, calls one method and returns its "ReturnValue" as it stands: 0 done, 1 done but
/// a restart is needed, anything else the method's own failure, which the caller judges. A step
/// that fails throws CWmiError.
namespace sys {

std::uint32_t renameComputer(const std::string& newName, const std::string& userName,
                             const std::string& password);

std::uint32_t enableDhcp(std::uint32_t index);
std::uint32_t enableStatic(std::uint32_t index, const std::vector<ipc::IPv4Address>& addresses,
                           const std::vector<ipc::IPv4Address>& masks);
std::uint32_t setGateways(std::uint32_t index, const std::vector<ipc::IPv4Address>& gateways);
std::uint32_t setDnsServerSearchOrder(std::uint32_t index,
                                      const std::vector<ipc::IPv4Address>& servers);
/// Belongs to the class, not to an adapter: the list is the machine's.
std::uint32_t setDnsSuffixSearchOrder(const std::vector<std::string>& suffixes);

/// `joinOptions` and `unjoinOptions` are the flags of the Windows join functions.
std::uint32_t joinDomainOrWorkgroup(const std::string& name, const std::string& userName,
                                    const std::string& password, const std::string& accountOu,
                                    std::int32_t joinOptions);
std::uint32_t unjoinDomainOrWorkgroup(const std::string& userName, const std::string& password,
                                      std::int32_t unjoinOptions);

}  // namespace sys
