#include "machine/RealCalls.h"

namespace machine {
namespace {

template <typename Function>
void LookUp(HMODULE library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
}

RealCalls LookUpAll() {
    RealCalls real = {};
    const HMODULE kernel = ::GetModuleHandleW(L"kernel32.dll");
    LookUp(kernel, "CloseHandle", real.CloseHandle);
    LookUp(kernel, "CreateFileA", real.CreateFileA);
    LookUp(kernel, "CreatePipe", real.CreatePipe);
    LookUp(kernel, "CreateProcessA", real.CreateProcessA);
    LookUp(kernel, "DeleteFileA", real.DeleteFileA);
    LookUp(kernel, "DuplicateHandle", real.DuplicateHandle);
    LookUp(kernel, "FreeLibrary", real.FreeLibrary);
    LookUp(kernel, "GetExitCodeProcess", real.GetExitCodeProcess);
    LookUp(kernel, "GetFileAttributesA", real.GetFileAttributesA);
    LookUp(kernel, "GetFileInformationByHandle", real.GetFileInformationByHandle);
    LookUp(kernel, "GetFinalPathNameByHandleW", real.GetFinalPathNameByHandleW);
    LookUp(kernel, "GetFullPathNameA", real.GetFullPathNameA);
    LookUp(kernel, "GetModuleFileNameA", real.GetModuleFileNameA);
    LookUp(kernel, "GetProcAddress", real.GetProcAddress);
    LookUp(kernel, "GetStdHandle", real.GetStdHandle);
    LookUp(kernel, "LoadLibraryA", real.LoadLibraryA);
    LookUp(kernel, "MoveFileA", real.MoveFileA);
    LookUp(kernel, "PeekNamedPipe", real.PeekNamedPipe);
    LookUp(kernel, "ReadFile", real.ReadFile);
    LookUp(kernel, "SetHandleInformation", real.SetHandleInformation);
    LookUp(kernel, "SetStdHandle", real.SetStdHandle);
    LookUp(kernel, "Sleep", real.Sleep);
    LookUp(kernel, "TerminateProcess", real.TerminateProcess);
    LookUp(kernel, "WaitForSingleObject", real.WaitForSingleObject);
    LookUp(kernel, "WriteFile", real.WriteFile);

    // Kept loaded for the life of the process, as an import would.
    const HMODULE sockets = ::LoadLibraryW(L"ws2_32.dll");
    LookUp(sockets, "WSAStartup", real.WsaStartup);
    LookUp(sockets, "WSAGetLastError", real.WsaGetLastError);
    LookUp(sockets, "WSASetLastError", real.WsaSetLastError);
    LookUp(sockets, "gethostname", real.GetHostName);
    LookUp(::LoadLibraryW(L"advapi32.dll"), "LsaNtStatusToWinError", real.LsaNtStatusToWinError);
    return real;
}

}  // namespace

const RealCalls& Real() {
    static const RealCalls kReal = LookUpAll();
    return kReal;
}

}  // namespace machine
