#include "common/ipc/IpAddress.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#endif

#include "common/ipc/WinSock.h"
#include "common/util/Strings.h"

namespace ipc {

IPv4Address::IPv4Address(const std::string& text) {
    Resolve(text);
}

void IPv4Address::Resolve(const std::string& text) {
    state_ = 0;
    if (!text.empty() && util::IsLetter(text.front())) {
        ResolveHostName(text, address_);
    } else {
        address_ = inet_addr(text.c_str());
    }
}

std::string IPv4Address::ToString() const {
    in_addr address{};
    address.s_addr = address_;
    const char* const text = inet_ntoa(address);
    return text != nullptr ? text : "";
}

}  // namespace ipc
