#include "common/config/command/SetDhcp.h"

#include "common/config/command/MethodResult.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"

namespace config::command {

bool SetDhcp::IsNeeded() {
    bool enabled = false;
    sys::getDhcpEnabled(NicIndex(), enabled);
    return !enabled;
}

void SetDhcp::Execute() {
    CheckMethodResult(sys::enableDhcp(NicIndex()), "SetDhcp", "Configuring DHCP failed", 48);
}

}  // namespace config::command
