#include "common/config/command/SetGateway.h"

#include "common/config/command/AddressList.h"
#include "common/config/command/MethodResult.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"

namespace config::command {

bool SetGateway::IsNeeded() {
    std::vector<ipc::IPv4Address> current;
    sys::getGateways(NicIndex(), current);
    return current != gateways_;
}

void SetGateway::Execute() {
    CheckMethodResult(sys::setGateways(NicIndex(), gateways_), "SetGateway",
                      "Configuring gateways failed", 52);
}

std::string SetGateway::GetDescription() {
    return "Gateways=" + JoinAddresses(gateways_);
}

}  // namespace config::command
