// Real handles that the ledger keeps account of. The C++ runtime linked into an image shares its
// import table, so a call on a handle that no served call handed out is the runtime's own business
// and passes unrecorded.
#pragma once

#include <windows.h>

#include <string_view>

#include "machine/Call.h"

namespace machine {

inline constexpr std::string_view fileHandle = "file handle";
inline constexpr std::string_view pipeHandle = "pipe handle";
inline constexpr std::string_view processHandle = "process handle";
inline constexpr std::string_view threadHandle = "thread handle";

// The kind that the handle was handed out as; empty when it was not.
std::string_view KindOfHandle(const Core& core, HANDLE handle);
// The same question before a call is recorded. Keeps the thread's last error.
bool IsHandedOut(HANDLE handle);

void HandOutHandle(Call& call, std::string_view kind, HANDLE handle, std::string_view detail);

}  // namespace machine
