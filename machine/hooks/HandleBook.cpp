#include "machine/hooks/HandleBook.h"

namespace machine {
namespace {

std::uintptr_t IdentityOf(HANDLE handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace

std::string_view KindOfHandle(const Core& core, HANDLE handle) {
    for (const std::string_view kind : {pipeHandle, processHandle, threadHandle, fileHandle}) {
        if (core.ledger.Holds(kind, IdentityOf(handle))) {
            return kind;
        }
    }
    return {};
}

bool IsHandedOut(HANDLE handle) {
    const DWORD lastError = GetLastError();
    Core& core = *Core::Active();
    EnterCriticalSection(core.Lock());
    const bool handedOut = !KindOfHandle(core, handle).empty();
    LeaveCriticalSection(core.Lock());
    SetLastError(lastError);
    return handedOut;
}

void HandOutHandle(Call& call, std::string_view kind, HANDLE handle, std::string_view detail) {
    call->ledger.HandOut(kind, IdentityOf(handle), call.Origin(detail));
}

}  // namespace machine
