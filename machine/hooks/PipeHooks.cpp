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

BOOL ServeCreatePipe(Core& core, PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES security,
                     DWORD size) {
    Call call(core, "CreatePipe", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result = call.RealBoolean(Real().CreatePipe(readEnd, writeEnd, security, size));
    if (result != FALSE) {
        HandOutHandle(call, kPipeHandle, *readEnd, "read end");
        HandOutHandle(call, kPipeHandle, *writeEnd, "write end");
    }
    return result;
}

BOOL ServeSetHandleInformation(Core& core, HANDLE handle, DWORD mask, DWORD flags) {
    Call call(core, "SetHandleInformation", {{"mask", Hex(mask)}, {"flags", Hex(flags)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().SetHandleInformation(handle, mask, flags));
}

struct OnHandedOutSource {
    bool operator()(const Core& core, HANDLE /*process*/, HANDLE source,
                    const auto&... /*others*/) const {
        return OnHandedOutHandle()(core, source);
    }
};

BOOL ServeDuplicateHandle(Core& core, HANDLE sourceProcess, HANDLE source, HANDLE targetProcess,
                          LPHANDLE target, DWORD access, BOOL inherit, DWORD options) {
    Call call(core, "DuplicateHandle",
              {{"inherit", inherit != FALSE ? "yes" : "no"}, {"options", Hex(options)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const std::string_view kind = KindOfHandle(call.Machine(), source);
    const BOOL result = call.RealBoolean(Real().DuplicateHandle(
        sourceProcess, source, targetProcess, target, access, inherit, options));
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

BOOL ServeCloseHandle(Core& core, HANDLE handle) {
    Call call(core, "CloseHandle");
    const std::string_view kind = KindOfHandle(call.Machine(), handle);
    const auto identity = reinterpret_cast<std::uintptr_t>(handle);
    call.AddArgument("kind", std::string(kind));
    if (const auto fault = call.Fault()) {
        call->ledger.Excuse(kind, identity);
        return call.Boolean(false, *fault);
    }
    call->ledger.TakeBack(kind, identity);
    std::erase_if(call->routeChildren,
                  [handle](const RouteChild& child) { return child.Process() == handle; });
    return call.RealBoolean(Real().CloseHandle(handle));
}

BOOL ServePeekNamedPipe(Core& core, HANDLE pipe, LPVOID buffer, DWORD size, LPDWORD read,
                        LPDWORD available, LPDWORD left) {
    Call call(core, "PeekNamedPipe");
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

BOOL ServeReadFile(Core& core, HANDLE file, LPVOID buffer, DWORD size, LPDWORD read,
                   LPOVERLAPPED overlapped) {
    Call call(core, "ReadFile", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result =
        call.Unlocked([&] { return Real().ReadFile(file, buffer, size, read, overlapped); });
    return call.Boolean(result != FALSE, call.RealError());
}

struct OnHandedOutOrStandardHandle {
    bool operator()(const Core& core, HANDLE file, const auto&... /*others*/) const {
        return OnHandedOutHandle()(core, file) || core.standardHandles.Contains(file);
    }
};

BOOL ServeWriteFile(Core& core, HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written,
                    LPOVERLAPPED overlapped) {
    Call call(core, "WriteFile", {{"size", std::to_string(size)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result =
        call.Unlocked([&] { return Real().WriteFile(file, buffer, size, written, overlapped); });
    return call.Boolean(result != FALSE, call.RealError());
}

HANDLE ServeGetStdHandle(Core& core, DWORD which) {
    Call call(core, "GetStdHandle", {{"which", Name(which)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_HANDLE_VALUE", true, *fault);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = Real().GetStdHandle(which);
    call.Note(handle == nullptr ? "null" : "handle", handle == INVALID_HANDLE_VALUE,
              GetLastError());
    call->standardHandles.Insert(handle);
    return handle;
}

BOOL ServeSetStdHandle(Core& core, DWORD which, HANDLE handle) {
    Call call(core, "SetStdHandle", {{"which", Name(which)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().SetStdHandle(which, handle));
}

}  // namespace

void AddPipeHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeCloseHandle, OnHandedOutHandle>("CloseHandle"));
    hooks.push_back(MakeHook<&ServeCreatePipe>("CreatePipe"));
    hooks.push_back(MakeHook<&ServeDuplicateHandle, OnHandedOutSource>("DuplicateHandle"));
    hooks.push_back(MakeHook<&ServeGetStdHandle>("GetStdHandle"));
    hooks.push_back(MakeHook<&ServePeekNamedPipe, OnHandedOutHandle>("PeekNamedPipe"));
    hooks.push_back(MakeHook<&ServeReadFile, OnHandedOutHandle>("ReadFile"));
    hooks.push_back(
        MakeHook<&ServeSetHandleInformation, OnHandedOutHandle>("SetHandleInformation"));
    hooks.push_back(MakeHook<&ServeSetStdHandle>("SetStdHandle"));
    hooks.push_back(MakeHook<&ServeWriteFile, OnHandedOutOrStandardHandle>("WriteFile"));
}

}  // namespace machine
