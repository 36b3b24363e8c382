// Real handles that the ledger keeps account of. The C++ runtime and the test framework linked into
// an image share its import table and have threads of their own in it, so a call on a handle that
// no served call handed out is their business and passes unrecorded.
#pragma once

#include <windows.h>

#include <string_view>

#include "machine/Call.h"

namespace machine {

inline constexpr std::string_view kFileHandle = "file handle";
inline constexpr std::string_view kPipeHandle = "pipe handle";
inline constexpr std::string_view kProcessHandle = "process handle";
inline constexpr std::string_view kThreadHandle = "thread handle";

/// The kind that the handle was handed out as; empty when it was not.
std::string_view KindOfHandle(const Core& core, HANDLE handle);
/// Calls on such a handle; it is their first argument. Keeps the thread's last error.
struct OnHandedOutHandle {
    bool operator()(const Core& core, HANDLE handle, const auto&... /*others*/) const {
        return !KindOfHandle(core, handle).empty();
    }
};

void HandOutHandle(Call& call, std::string_view kind, HANDLE handle, std::string_view detail);

}  // namespace machine
