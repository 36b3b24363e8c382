#pragma once

#include <string>
#include <vector>

#include "common/ipc/IpAddress.h"

namespace config::command {

/// Texts joined by ",".
std::string JoinTexts(const std::vector<std::string>& texts);

/// Addresses in dotted form joined by ",".
std::string JoinAddresses(const std::vector<ipc::IPv4Address>& addresses);

}  // namespace config::command
