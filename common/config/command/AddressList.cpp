#include "common/config/command/AddressList.h"

namespace config::command {

std::string JoinTexts(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        if (&text != &texts.front()) {
            joined += ',';
        }
        joined += text;
    }
    return joined;
}

std::string JoinAddresses(const std::vector<ipc::IPv4Address>& addresses) {
    std::vector<std::string> texts;
    texts.reserve(addresses.size());
    for (const ipc::IPv4Address& address : addresses) {
        texts.push_back(address.ToString());
    }
    return JoinTexts(texts);
}

}  // namespace config::command
