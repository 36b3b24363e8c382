#include "common/sys/nic/NicRegistry.h"

#include "common/sys/RegistryText.h"

namespace sys {

std::string DeviceKey(const std::string& pnpDeviceId) {
    return "SYSTEM\\CurrentControlSet\\Enum\\" + pnpDeviceId;
}

std::string InterfaceKey(const std::string& settingId) {
    return "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + settingId;
}

std::string ReadLocationInformation(const std::string& pnpDeviceId) {
    return ReadLocalMachineText(DeviceKey(pnpDeviceId), "LocationInformation");
}

std::string ReadNameServer(const std::string& settingId) {
    return ReadLocalMachineText(InterfaceKey(settingId), "NameServer");
}

}  // namespace sys
