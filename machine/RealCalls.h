// The real platform functions behind the served ones. The simulation may sit in the very image
// whose import table it patched, so it never calls them by name.
#pragma once

#include <windows.h>

#include <winsock2.h>

namespace machine {

struct RealCalls {
    decltype(&::CloseHandle) CloseHandle;
    decltype(&::CreateFileA) CreateFileA;
    decltype(&::CreatePipe) CreatePipe;
    decltype(&::CreateProcessA) CreateProcessA;
    decltype(&::DeleteFileA) DeleteFileA;
    decltype(&::DuplicateHandle) DuplicateHandle;
    decltype(&::FreeLibrary) FreeLibrary;
    decltype(&::GetExitCodeProcess) GetExitCodeProcess;
    decltype(&::GetFileAttributesA) GetFileAttributesA;
    decltype(&::GetFileInformationByHandle) GetFileInformationByHandle;
    decltype(&::GetFinalPathNameByHandleW) GetFinalPathNameByHandleW;
    decltype(&::GetFullPathNameA) GetFullPathNameA;
    decltype(&::GetModuleFileNameA) GetModuleFileNameA;
    decltype(&::GetProcAddress) GetProcAddress;
    decltype(&::GetStdHandle) GetStdHandle;
    decltype(&::LoadLibraryA) LoadLibraryA;
    decltype(&::MoveFileA) MoveFileA;
    decltype(&::PeekNamedPipe) PeekNamedPipe;
    decltype(&::ReadFile) ReadFile;
    decltype(&::SetHandleInformation) SetHandleInformation;
    decltype(&::SetStdHandle) SetStdHandle;
    decltype(&::Sleep) Sleep;
    decltype(&::TerminateProcess) TerminateProcess;
    decltype(&::WaitForSingleObject) WaitForSingleObject;
    decltype(&::WriteFile) WriteFile;

    /// Libraries that the program need not have loaded; null when the system lacks the function.
    decltype(&::WSAStartup) WsaStartup;
    decltype(&::WSAGetLastError) WsaGetLastError;
    decltype(&::WSASetLastError) WsaSetLastError;
    decltype(&::gethostname) GetHostName;
    ULONG(WINAPI* LsaNtStatusToWinError)(LONG status);
};

/// Looked up once, before the first import table is patched.
const RealCalls& Real();

}  // namespace machine
