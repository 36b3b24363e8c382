#include "common/ipc/WinSock.h"

#include <winsock2.h>

#include <cstring>

#include "common/err/GeneralError.h"
#include "common/lang/CriticalSection.h"

namespace ipc {

namespace {

lang::CriticalSection& StartLock() {
    static lang::CriticalSection lock;
    return lock;
}

}  // namespace

WinSockManager::WinSockManager() {
    lang::CriticalSection& lock = StartLock();
    lock.Enter();
    WSADATA data{};
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) {
        // Left twice when the start fails. Nothing depends on the count of a lock that is taken
        // once in the life of the process.
        lock.Leave();
    }
    lock.Leave();
}

void WinSockManager::Instance() {
    static const WinSockManager kInstance;
}

void ResolveHostName(const std::string& name, std::uint32_t& address) {
    WinSockManager::Instance();
    const hostent* const entry = gethostbyname(name.c_str());
    if (entry == nullptr) {
        throw CIPAddressError("common\\ipc\\IpAddress", "IPAddress::Connect Name Resolution Error",
                              159, WSAGetLastError());
    }
    if (entry->h_addr_list[0] != nullptr) {
        std::memcpy(&address, entry->h_addr_list[0], sizeof address);
    }
}

}  // namespace ipc
