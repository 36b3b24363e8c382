#pragma once

#include <string>

/// The two registry values that adapter discovery reads. Both throw RegistryError when the key or
/// the value cannot be read.
namespace sys {

/// Their keys below HKEY_LOCAL_MACHINE.
std::string DeviceKey(const std::string& pnpDeviceId);
std::string InterfaceKey(const std::string& settingId);

/// "LocationInformation" of a plug-and-play device.
std::string ReadLocationInformation(const std::string& pnpDeviceId);

/// "NameServer" of an adapter's TCP/IP interface: the DNS servers that were set by hand.
std::string ReadNameServer(const std::string& settingId);

}  // namespace sys
