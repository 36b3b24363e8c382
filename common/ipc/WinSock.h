#pragma once

#include <cstdint>
#include <string>

namespace ipc {

/// Starts Winsock once per process, on first use.
class WinSockManager {
public:
    virtual ~WinSockManager() = default;

    /// Makes sure that WSAStartup (version 2.2) has been called. A failed start is not reported and
    /// never tried again; WSACleanup is never called.
    static void Instance();

private:
    WinSockManager();
};

/// Looks `name` up with gethostbyname and writes its first address, in network byte order. Leaves
/// `address` as it was when the name has no address. Throws CIPAddressError when there is no entry.
void ResolveHostName(const std::string& name, std::uint32_t& address);

}  // namespace ipc
