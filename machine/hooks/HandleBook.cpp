#include "machine/hooks/HandleBook.h"

namespace machine {
namespace {

std::uintptr_t IdentityOf(HANDLE handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace

std::string_view KindOfHandle(const Core& core, HANDLE handle) {
    for (const std::string_view kind : {kPipeHandle, kProcessHandle, kThreadHandle, kFileHandle}) {
        if (core.ledger.Holds(kind, IdentityOf(handle))) {
            return kind;
        }
    }
    return {};
}

void HandOutHandle(Call& call, std::string_view kind, HANDLE handle, std::string_view detail) {
    call->ledger.HandOut(kind, IdentityOf(handle), call.Origin(detail));
}

}  // namespace machine
