#include "common/sys/nic/NicRegistry.h"

#include "common/sys/RegistryText.h"

namespace sys {

std::string deviceKey(const std::string& pnpDeviceId) {
    return "SYSTEM\\CurrentControlSet\\Enum\\" + pnpDeviceId;
}

std::string interfaceKey(const std::string& settingId) {
    return "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + settingId;
}

std::string readLocationInformation(const std::string& pnpDeviceId) {
    return readLocalMachineText(deviceKey(pnpDeviceId), "LocationInformation");
}

std::string readNameServer(const std::string& settingId) {
    return readLocalMachineText(interfaceKey(settingId), "NameServer");
}

}  // namespace sys
