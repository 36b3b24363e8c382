// Name resolution.
#include <windows.h>

#include <winsock2.h>

#include <algorithm>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/Hooks.h"
#include "machine/model/Address.h"

namespace machine {
namespace {

/// What gethostbyname points to: one per thread, good until that thread's next call.
struct HostEntry {
    std::string name;
    std::vector<std::uint32_t> addresses;
    std::vector<char*> list;
    char* noAliases = nullptr;
    hostent entry = {};

    hostent* Fill(const HostName& host) {
        name = host.name;
        addresses.clear();
        list.clear();
        for (const std::string& text : host.addresses) {
            addresses.push_back(_byteswap_ulong(model::ParseAddress(text).value_or(0)));
        }
        for (std::uint32_t& address : addresses) {
            list.push_back(reinterpret_cast<char*>(&address));
        }
        list.push_back(nullptr);
        entry.h_name = name.data();
        entry.h_aliases = &noAliases;
        entry.h_addrtype = AF_INET;
        entry.h_length = 4;
        entry.h_addr_list = list.data();
        return &entry;
    }
};

std::map<DWORD, HostEntry>& Entries() {
    static std::map<DWORD, HostEntry> entries;
    return entries;
}

/// Winsock is the process's, whichever simulation runs in it.
bool WinsockIsStarted() {
    char name[256];
    return Real().GetHostName(name, sizeof(name)) == 0 ||
           Real().WsaGetLastError() != WSANOTINITIALISED;
}

int ServeWSAStartup(Core& core, WORD version, LPWSADATA data) {
    Call call(core, "WSAStartup", {{"version", Hex(version)}});
    const int result =
        call.Fault() ? static_cast<int>(*call.Fault()) : Real().WsaStartup(version, data);
    call.Status(static_cast<std::uint32_t>(result));
    return result;
}

hostent* ServeGetHostByName(Core& core, const char* name) {
    const std::string text = OrEmpty(name);
    Call call(core, "gethostbyname", {{"name", text}});
    const auto fail = [&call](std::uint32_t error) -> hostent* {
        call.Note("null", true, error);
        return nullptr;
    };
    if (const auto fault = call.Fault()) {
        return fail(*fault);
    }
    if (!WinsockIsStarted()) {
        return fail(WSANOTINITIALISED);
    }
    HostName host{text, {text}};
    if (!model::ParseAddress(text)) {
        const auto& hosts = call->state.hosts;
        const auto found = std::ranges::find_if(
            hosts, [&text](const HostName& known) { return EqualNoCase(known.name, text); });
        if (found == hosts.end()) {
            return fail(WSAHOST_NOT_FOUND);
        }
        host = *found;
    }
    call.Note(Join(host.addresses, ", "));
    return Entries()[GetCurrentThreadId()].Fill(host);
}

}  // namespace

void AddNetHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeWSAStartup>("WSAStartup"));
    hooks.push_back(MakeHook<&ServeGetHostByName>("gethostbyname"));
}

}  // namespace machine
