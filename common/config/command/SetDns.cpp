#include "common/config/command/SetDns.h"

#include "common/config/command/AddressList.h"
#include "common/config/command/MethodResult.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"

namespace config::command {

bool SetDns::IsNeeded() {
    std::vector<ipc::IPv4Address> current;
    std::vector<std::string> suffixes;
    sys::getDnsServersAndSuffixes(NicIndex(), current, suffixes);
    return current != servers_;
}

void SetDns::Execute() {
    CheckMethodResult(sys::setDnsServerSearchOrder(NicIndex(), servers_), "SetDns",
                      "Configuring DNS servers failed", 54);
}

std::string SetDns::GetDescription() {
    return "DNS Servers=" + JoinAddresses(servers_);
}

}  // namespace config::command
