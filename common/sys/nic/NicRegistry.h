#pragma once

#include <string>

/// The two registry values that adapter discovery reads. Both throw RegistryError when the key or
/// the value cannot be read.
namespace sys {

/// Their keys below HKEY_LOCAL_MACHINE.
std::string deviceKey(const std::string& pnpDeviceId);
std::string interfaceKey(const std::string& settingId);

/// "LocationInformation" of a plug-and-play device.
std::string readLocationInformation(const std::string& pnpDeviceId);

/// "NameServer" of an adapter's TCP/IP interface: the DNS servers that were set by hand.
std::string readNameServer(const std::string& settingId);

}  // namespace sys
