#include "common/sys/NicRegistry.h"

#include "common/sys/Registry.h"

namespace sys {

namespace {

std::string ReadLocalMachineValue(const std::string& subkey, const char* name) {
    Registry key;
    key.SetSubkey(subkey);
    key.OpenForReading(0);
    std::string value;
    key.ReadString(name, value);
    key.Close();
    return value;
}

}  // namespace

std::string deviceKey(const std::string& pnpDeviceId) {
    return "SYSTEM\\CurrentControlSet\\Enum\\" + pnpDeviceId;
}

std::string interfaceKey(const std::string& settingId) {
    return "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + settingId;
}

std::string readLocationInformation(const std::string& pnpDeviceId) {
    return ReadLocalMachineValue(deviceKey(pnpDeviceId), "LocationInformation");
}

std::string readNameServer(const std::string& settingId) {
    return ReadLocalMachineValue(interfaceKey(settingId), "NameServer");
}

}  // namespace sys
