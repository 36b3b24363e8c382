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

DWORD ServeGetFileAttributesA(Core& core, LPCSTR path) {
    Call call(core, "GetFileAttributesA", {{"path", OrEmpty(path)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_FILE_ATTRIBUTES", true, *fault);
        return INVALID_FILE_ATTRIBUTES;
    }
    const DWORD attributes = Real().GetFileAttributesA(path);
    call.Note(Hex(attributes), attributes == INVALID_FILE_ATTRIBUTES, GetLastError());
    return attributes;
}

BOOL ServeMoveFileA(Core& core, LPCSTR source, LPCSTR destination) {
    Call call(core, "MoveFileA",
              {{"source", OrEmpty(source)}, {"destination", OrEmpty(destination)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().MoveFileA(source, destination));
}

BOOL ServeDeleteFileA(Core& core, LPCSTR path) {
    Call call(core, "DeleteFileA", {{"path", OrEmpty(path)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().DeleteFileA(path));
}

HANDLE ServeCreateFileA(Core& core, LPCSTR path, DWORD access, DWORD share,
                        LPSECURITY_ATTRIBUTES security, DWORD disposition, DWORD flags,
                        HANDLE pattern) {
    Call call(core, "CreateFileA", {{"path", OrEmpty(path)}, {"access", Hex(access)}});
    if (const auto fault = call.Fault()) {
        call.Note("INVALID_HANDLE_VALUE", true, *fault);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE file =
        Real().CreateFileA(path, access, share, security, disposition, flags, pattern);
    const DWORD error = GetLastError();
    const bool failed = file == INVALID_HANDLE_VALUE;
    call.Note(failed ? "INVALID_HANDLE_VALUE" : "handle", failed, error);
    if (!failed) {
        HandOutHandle(call, kFileHandle, file, OrEmpty(path));
    }
    return file;
}

BOOL ServeGetFileInformationByHandle(Core& core, HANDLE file,
                                     LPBY_HANDLE_FILE_INFORMATION information) {
    Call call(core, "GetFileInformationByHandle");
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().GetFileInformationByHandle(file, information));
}

DWORD ServeGetFinalPathNameByHandleW(Core& core, HANDLE file, LPWSTR path, DWORD size,
                                     DWORD flags) {
    Call call(core, "GetFinalPathNameByHandleW", {{"flags", Hex(flags)}});
    if (const auto fault = call.Fault()) {
        call.Note("0", true, *fault);
        return 0;
    }
    const DWORD length = Real().GetFinalPathNameByHandleW(file, path, size, flags);
    call.Note(std::to_string(length), length == 0, GetLastError());
    return length;
}

DWORD ServeGetFullPathNameA(Core& core, LPCSTR name, DWORD size, LPSTR buffer, LPSTR* filePart) {
    Call call(core, "GetFullPathNameA", {{"name", OrEmpty(name)}});
    if (const auto fault = call.Fault()) {
        call.Note("0", true, *fault);
        return 0;
    }
    const DWORD length = Real().GetFullPathNameA(name, size, buffer, filePart);
    call.Note(std::to_string(length), length == 0, GetLastError());
    return length;
}

/// The way of GetModuleFileNameA with a path: cut where the buffer ends.
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

DWORD ServeGetModuleFileNameA(Core& core, HMODULE module, LPSTR buffer, DWORD size) {
    Call call(core, "GetModuleFileNameA",
              {{"module", module == nullptr ? "the program" : "a library"}});
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

struct WithTime {
    bool operator()(const Core& /*core*/, DWORD milliseconds) const { return milliseconds != 0; }
};

void ServeSleep(Core& core, DWORD milliseconds) {
    {
        Call call(core, "Sleep", {{"milliseconds", std::to_string(milliseconds)}}, Failing::kNever);
        call->PassTime(milliseconds);
    }
    Real().Sleep(0);
}

}  // namespace

void AddFileHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeCreateFileA>("CreateFileA"));
    hooks.push_back(MakeHook<&ServeDeleteFileA>("DeleteFileA"));
    hooks.push_back(MakeHook<&ServeGetFileAttributesA>("GetFileAttributesA"));
    hooks.push_back(MakeHook<&ServeGetFileInformationByHandle, OnHandedOutHandle>(
        "GetFileInformationByHandle"));
    hooks.push_back(
        MakeHook<&ServeGetFinalPathNameByHandleW, OnHandedOutHandle>("GetFinalPathNameByHandleW"));
    hooks.push_back(MakeHook<&ServeGetFullPathNameA>("GetFullPathNameA"));
    hooks.push_back(MakeHook<&ServeGetModuleFileNameA>("GetModuleFileNameA"));
    hooks.push_back(MakeHook<&ServeMoveFileA>("MoveFileA"));
    hooks.push_back(MakeHook<&ServeSleep, WithTime>("Sleep"));
}

}  // namespace machine
