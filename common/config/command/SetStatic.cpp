#include "common/config/command/SetStatic.h"

#include "common/config/command/MethodResult.h"
#include "common/err/GeneralError.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"

namespace config::command {

bool SetStatic::IsNeeded() {
    bool dhcpEnabled = false;
    sys::getDhcpEnabled(NicIndex(), dhcpEnabled);
    if (dhcpEnabled) {
        return true;
    }
    ipc::IPv4Address address;
    ipc::IPv4Address mask;
    sys::getIpAddressAndMask(NicIndex(), address, mask);
    // Without an address Execute has an error to report.
    return addresses_.empty() || addresses_.front() != address;
}

void SetStatic::Execute() {
    if (addresses_.empty() || masks_.empty()) {
        throw ConfigError("SetStatic", "Static IP addresses/masks list empty", 62,
                          ErrorKind::kEmptyList);
    }
    CheckMethodResult(sys::enableStatic(NicIndex(), addresses_, masks_), "SetStatic",
                      "Configuring static IP addresses failed", 68);
}

std::string SetStatic::GetDescription() {
    std::string pairs;
    for (std::size_t i = 0; i < addresses_.size(); ++i) {
        pairs += "{ip=" + addresses_[i].ToString();
        if (i < masks_.size()) {
            pairs += ",mask=" + masks_[i].ToString();
        }
        pairs += '}';
    }
    for (std::size_t i = addresses_.size(); i < masks_.size(); ++i) {
        pairs += "{mask=" + masks_[i].ToString() + "}";
    }
    return "IP and Subnet Masks: " + pairs;
}

}  // namespace config::command
