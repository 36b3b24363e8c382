// Pipes, standard handles and the closing of handles: real, recorded, accounted for, and able to
// fail.
#include <windows.h>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/HandleBook.h"
#include "machine/hooks/Hooks.h"

namespace machine {
namespace {

std::string Name(DWORD standardHandle) {
    switch (standardHandle) {
        case STD_INPUT_HANDLE:
            return "STD_INPUT_HANDLE";
        case STD_OUTPUT_HANDLE:
            return "STD_OUTPUT_HANDLE";
        case STD_ERROR_HANDLE:
            return "STD_ERROR_HANDLE";
        default:
            return Hex(standardHandle);
    }
}

bool IsStandardHandle(HANDLE handle) {
    const DWORD lastError = GetLastError();
    Core& core = *Core::Active();
    EnterCriticalSection(core.Lock());
    const bool isStandard = core.standardHandles.contains(handle);
    LeaveCriticalSection(core.Lock());
    SetLastError(lastError);
    return isStandard;
}

BOOL WINAPI ServeCreatePipe(PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES security,
                            DWORD size) {
    if (!Serving()) {
        return Real().CreatePipe(readEnd, writeEnd, security, size);
    }
    Call call("CreatePipe", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result = call.RealBoolean(Real().CreatePipe(readEnd, writeEnd, security, size));
    if (result != FALSE) {
        HandOutHandle(call, pipeHandle, *readEnd, "read end");
        HandOutHandle(call, pipeHandle, *writeEnd, "write end");
    }
    return result;
}

BOOL WINAPI ServeSetHandleInformation(HANDLE handle, DWORD mask, DWORD flags) {
    if (!Serving() || !IsHandedOut(handle)) {
        return Real().SetHandleInformation(handle, mask, flags);
    }
    Call call("SetHandleInformation", {{"mask", Hex(mask)}, {"flags", Hex(flags)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().SetHandleInformation(handle, mask, flags));
}

BOOL WINAPI ServeDuplicateHandle(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess,
                                 LPHANDLE target, DWORD access, BOOL inherit, DWORD options) {
    const auto duplicate = [&] {
        return Real().DuplicateHandle(sourceProcess, source, targetProcess, target, access, inherit,
                                      options);
    };
    if (!Serving() || !IsHandedOut(source)) {
        return duplicate();
    }
    Call call("DuplicateHandle",
              {{"inherit", inherit != FALSE ? "yes" : "no"}, {"options", Hex(options)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const std::string_view kind = KindOfHandle(call.Machine(), source);
    const BOOL result = call.RealBoolean(duplicate());
    if (result != FALSE) {
        if ((options & DUPLICATE_CLOSE_SOURCE) != 0) {
            call->ledger.TakeBack(kind, reinterpret_cast<std::uintptr_t>(source));
        }
        if (target != nullptr) {
            HandOutHandle(call, kind, *target, "");
        }
    }
    return result;
}

BOOL WINAPI ServeCloseHandle(HANDLE handle) {
    if (!Serving() || !IsHandedOut(handle)) {
        return Real().CloseHandle(handle);
    }
    Call call("CloseHandle");
    const std::string_view kind = KindOfHandle(call.Machine(), handle);
    const auto identity = reinterpret_cast<std::uintptr_t>(handle);
    call.AddArgument("kind", std::string(kind));
    if (const auto fault = call.Fault()) {
        call->ledger.Excuse(kind, identity);
        return call.Boolean(false, *fault);
    }
    call->ledger.TakeBack(kind, identity);
    return call.RealBoolean(Real().CloseHandle(handle));
}

BOOL WINAPI ServePeekNamedPipe(HANDLE pipe, LPVOID buffer, DWORD size, LPDWORD read,
                               LPDWORD available, LPDWORD left) {
    if (!Serving() || !IsHandedOut(pipe)) {
        return Real().PeekNamedPipe(pipe, buffer, size, read, available, left);
    }
    Call call("PeekNamedPipe");
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result =
        call.RealBoolean(Real().PeekNamedPipe(pipe, buffer, size, read, available, left));
    if (result != FALSE && available != nullptr) {
        call.AddArgument("available", std::to_string(*available));
    }
    return result;
}

BOOL WINAPI ServeReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read,
                          LPOVERLAPPED overlapped) {
    if (!Serving() || !IsHandedOut(file)) {
        return Real().ReadFile(file, buffer, size, read, overlapped);
    }
    Call call("ReadFile", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result =
        call.Unlocked([&] { return Real().ReadFile(file, buffer, size, read, overlapped); });
    return call.Boolean(result != FALSE, call.RealError());
}

BOOL WINAPI ServeWriteFile(HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written,
                           LPOVERLAPPED overlapped) {
    if (!Serving() || (!IsHandedOut(file) && !IsStandardHandle(file))) {
        return Real().WriteFile(file, buffer, size, written, overlapped);
    }
    Call call("WriteFile", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result =
        call.Unlocked([&] { return Real().WriteFile(file, buffer, size, written, overlapped); });
    return call.Boolean(result != FALSE, call.RealError());
}

HANDLE WINAPI ServeGetStdHandle(DWORD which) {
    if (!Serving()) {
        return Real().GetStdHandle(which);
    }
    Call call("GetStdHandle", {{"which", Name(which)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_HANDLE_VALUE", true, *fault);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = Real().GetStdHandle(which);
    call.Note(handle == nullptr ? "null" : "handle", handle == INVALID_HANDLE_VALUE,
              GetLastError());
    call->standardHandles.insert(handle);
    return handle;
}

BOOL WINAPI ServeSetStdHandle(DWORD which, HANDLE handle) {
    if (!Serving()) {
        return Real().SetStdHandle(which, handle);
    }
    Call call("SetStdHandle", {{"which", Name(which)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().SetStdHandle(which, handle));
}

}  // namespace

void AddPipeHooks(Hooks& hooks) {
    hooks.push_back(MakeHook("CloseHandle", &ServeCloseHandle));
    hooks.push_back(MakeHook("CreatePipe", &ServeCreatePipe));
    hooks.push_back(MakeHook("DuplicateHandle", &ServeDuplicateHandle));
    hooks.push_back(MakeHook("GetStdHandle", &ServeGetStdHandle));
    hooks.push_back(MakeHook("PeekNamedPipe", &ServePeekNamedPipe));
    hooks.push_back(MakeHook("ReadFile", &ServeReadFile));
    hooks.push_back(MakeHook("SetHandleInformation", &ServeSetHandleInformation));
    hooks.push_back(MakeHook("SetStdHandle", &ServeSetStdHandle));
    hooks.push_back(MakeHook("WriteFile", &ServeWriteFile));
}

}  // namespace machine
