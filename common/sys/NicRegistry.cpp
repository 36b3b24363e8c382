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

std::string readLocationInformation(const std::string& pnpDeviceId) {
    return ReadLocalMachineValue("SYSTEM\\CurrentControlSet\\Enum\\" + pnpDeviceId,
                                 "LocationInformation");
}

std::string readNameServer(const std::string& settingId) {
    return ReadLocalMachineValue(
        "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters\\Interfaces\\" + settingId,
        "NameServer");
}

}  // namespace sys
