#include "common/config/command/SetDnsSuffix.h"

#include "common/config/command/AddressList.h"
#include "common/config/command/MethodResult.h"
#include "common/sys/WmiMethods.h"
#include "common/sys/WmiQueries.h"

namespace config::command {

bool SetDnsSuffix::IsNeeded() {
    std::vector<ipc::IPv4Address> servers;
    std::vector<std::string> current;
    sys::getDnsServersAndSuffixes(NicIndex(), servers, current);
    return current != suffixes_;
}

void SetDnsSuffix::Execute() {
    CheckMethodResult(sys::setDnsSuffixSearchOrder(suffixes_), "SetDnsSuffix",
                      "Configuring DNS suffixes failed", 54);
}

std::string SetDnsSuffix::GetDescription() {
    return "DNS Suffixes=" + JoinTexts(suffixes_);
}

}  // namespace config::command
