// Files are real; their calls are recorded and can be made to fail. Sleep runs on the virtual
// clock.
#include <windows.h>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/HandleBook.h"
#include "machine/hooks/Hooks.h"

namespace machine {
namespace {

DWORD WINAPI ServeGetFileAttributesA(LPCSTR path) {
    if (!Serving()) {
        return Real().GetFileAttributesA(path);
    }
    Call call("GetFileAttributesA", {{"path", OrEmpty(path)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_FILE_ATTRIBUTES", true, *fault);
        return INVALID_FILE_ATTRIBUTES;
    }
    const DWORD attributes = Real().GetFileAttributesA(path);
    call.Note(Hex(attributes), attributes == INVALID_FILE_ATTRIBUTES, GetLastError());
    return attributes;
}

BOOL WINAPI ServeMoveFileA(LPCSTR source, LPCSTR destination) {
    if (!Serving()) {
        return Real().MoveFileA(source, destination);
    }
    Call call("MoveFileA", {{"source", OrEmpty(source)}, {"destination", OrEmpty(destination)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().MoveFileA(source, destination));
}

BOOL WINAPI ServeDeleteFileA(LPCSTR path) {
    if (!Serving()) {
        return Real().DeleteFileA(path);
    }
    Call call("DeleteFileA", {{"path", OrEmpty(path)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().DeleteFileA(path));
}

HANDLE WINAPI ServeCreateFileA(LPCSTR path, DWORD access, DWORD share,
                               LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                               HANDLE pattern) {
    const auto create = [&] {
        return Real().CreateFileA(path, access, share, security, disposition, flags, pattern);
    };
    if (!Serving()) {
        return create();
    }
    Call call("CreateFileA", {{"path", OrEmpty(path)}, {"access", Hex(access)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_HANDLE_VALUE", true, *fault);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE file = create();
    const DWORD error = GetLastError();
    const bool failed = file == INVALID_HANDLE_VALUE;
    call.Note(failed ? "INVALID_HANDLE_VALUE" : "handle", failed, error);
    if (!failed) {
        HandOutHandle(call, fileHandle, file, OrEmpty(path));
    }
    return file;
}

BOOL WINAPI ServeGetFileInformationByHandle(HANDLE file, LPBY_HANDLE_FILE_INFORMATION information) {
    if (!Serving() || !IsHandedOut(file)) {
        return Real().GetFileInformationByHandle(file, information);
    }
    Call call("GetFileInformationByHandle");
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().GetFileInformationByHandle(file, information));
}

DWORD WINAPI ServeGetFullPathNameA(LPCSTR name, DWORD size, LPSTR buffer, LPSTR* filePart) {
    if (!Serving()) {
        return Real().GetFullPathNameA(name, size, buffer, filePart);
    }
    Call call("GetFullPathNameA", {{"name", OrEmpty(name)}});
    if (const auto fault = call.Fault()) {
        call.Note("0", true, *fault);
        return 0;
    }
    const DWORD length = Real().GetFullPathNameA(name, size, buffer, filePart);
    call.Note(std::to_string(length), length == 0, GetLastError());
    return length;
}

// The way of GetModuleFileNameA with a path: cut where the buffer ends.
DWORD CopyPath(const std::string& path, LPSTR buffer, DWORD size) {
    if (path.size() >= size) {
        path.copy(buffer, size);
        if (size > 0) {
            buffer[size - 1] = '\0';
        }
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    }
    buffer[path.copy(buffer, path.size())] = '\0';
    return static_cast<DWORD>(path.size());
}

DWORD WINAPI ServeGetModuleFileNameA(HMODULE module, LPSTR buffer, DWORD size) {
    if (!Serving()) {
        return Real().GetModuleFileNameA(module, buffer, size);
    }
    Call call("GetModuleFileNameA", {{"module", module == nullptr ? "the program" : "a library"}});
    if (const auto fault = call.Fault()) {
        call.Note("0", true, *fault);
        return 0;
    }
    const DWORD length = module == nullptr && !call->programFile.empty()
                             ? CopyPath(call->programFile, buffer, size)
                             : Real().GetModuleFileNameA(module, buffer, size);
    const DWORD error = GetLastError();
    const bool failed = length == 0 || length >= size;
    call.Note(failed ? std::to_string(length) : std::string(buffer, length), failed, error);
    return length;
}

void WINAPI ServeSleep(DWORD milliseconds) {
    if (!Serving() || milliseconds == 0) {
        Real().Sleep(milliseconds);
        return;
    }
    {
        Call call("Sleep", {{"milliseconds", std::to_string(milliseconds)}}, Failing::Never);
        call->clock += milliseconds;
    }
    Real().Sleep(0);
}

}  // namespace

void AddFileHooks(Hooks& hooks) {
    hooks.push_back(MakeHook("CreateFileA", &ServeCreateFileA));
    hooks.push_back(MakeHook("DeleteFileA", &ServeDeleteFileA));
    hooks.push_back(MakeHook("GetFileAttributesA", &ServeGetFileAttributesA));
    hooks.push_back(MakeHook("GetFileInformationByHandle", &ServeGetFileInformationByHandle));
    hooks.push_back(MakeHook("GetFullPathNameA", &ServeGetFullPathNameA));
    hooks.push_back(MakeHook("GetModuleFileNameA", &ServeGetModuleFileNameA));
    hooks.push_back(MakeHook("MoveFileA", &ServeMoveFileA));
    hooks.push_back(MakeHook("Sleep", &ServeSleep));
}

}  // namespace machine
