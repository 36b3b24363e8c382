#include "machine/hooks/Hooks.h"

#include <algorithm>

#include "machine/Text.h"

namespace machine {
namespace {

/// Libraries whose functions read or change the machine, except those listed beside them.
struct Library {
    std::string_view name;
    std::vector<std::string_view> harmless;
};

const std::vector<Library>& MachineLibraries() {
    static const std::vector<Library> kLibraries = {
        {"activeds.dll", {"FreeADsMem"}},
        // What the compilers' runtimes draw random numbers with is harmless.
        {"advapi32.dll",
         {"CryptAcquireContextA", "CryptGenRandom", "CryptReleaseContext", "LsaNtStatusToWinError",
          "SystemFunction036"}},
        {"iphlpapi.dll", {}},
        {"netapi32.dll", {}},
        {"ole32.dll",
         {"CoTaskMemAlloc", "CoTaskMemFree", "CoTaskMemRealloc", "CLSIDFromString", "IIDFromString",
          "StringFromCLSID", "StringFromGUID2", "StringFromIID"}},
        {"secur32.dll", {}},
        {"shell32.dll", {}},
        {"wldap32.dll", {}},
        {"ws2_32.dll",
         {"htonl", "htons", "ntohl", "ntohs", "inet_addr", "inet_ntoa", "inet_ntop", "inet_pton",
          "WSAGetLastError", "WSASetLastError", "#8", "#9", "#14", "#15", "#11", "#12", "#112"}},
    };
    return kLibraries;
}

}  // namespace

const Hooks& AllHooks() {
    static const Hooks kAll = [] {
        Hooks hooks;
        AddComHooks(hooks);
        AddDirectoryHooks(hooks);
        AddFileHooks(hooks);
        AddIdentityHooks(hooks);
        AddLibraryHooks(hooks);
        AddNetHooks(hooks);
        AddPipeHooks(hooks);
        AddProcessHooks(hooks);
        AddRegistryHooks(hooks);
        return hooks;
    }();
    return kAll;
}

bool ReachesMachine(std::string_view library, std::string_view function) {
    for (const Library& known : MachineLibraries()) {
        if (EqualNoCase(known.name, library)) {
            return std::ranges::find(known.harmless, function) == known.harmless.end() &&
                   std::ranges::find(AllHooks(), function, &Hook::function) == AllHooks().end();
        }
    }
    return false;
}

}  // namespace machine
