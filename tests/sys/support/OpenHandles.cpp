#include "tests/sys/support/OpenHandles.h"

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace sys_tests {

namespace {

using QuerySystemInformation = LONG(WINAPI*)(int what, void* buffer, ULONG size, ULONG* needed);

constexpr int kExtendedHandles = 64;
constexpr auto kTooShort = static_cast<LONG>(0xC0000004);  // STATUS_INFO_LENGTH_MISMATCH

struct ExtendedHandle {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT creator;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

struct ExtendedHandles {
    ULONG_PTR count;
    ULONG_PTR reserved;
    ExtendedHandle first;
};

}  // namespace

std::size_t OpenHandles() {
    // Looked up by name: the headers' own enumeration does not have the class.
    const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<unsigned char> buffer(std::size_t{1} << 16);
    for (;;) {
        ULONG needed = 0;
        const LONG status =
            query(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()), &needed);
        if (status == 0) {
            break;
        }
        if (status != kTooShort) {
            throw std::runtime_error("the system does not list its handles");
        }
        buffer.resize(buffer.size() * 2);
    }
    ULONG_PTR total = 0;
    std::memcpy(&total, buffer.data(), sizeof total);
    std::size_t own = 0;
    for (ULONG_PTR i = 0; i < total; ++i) {
        ExtendedHandle handle{};
        std::memcpy(&handle, buffer.data() + offsetof(ExtendedHandles, first) + i * sizeof handle,
                    sizeof handle);
        own += handle.process == GetCurrentProcessId() ? 1 : 0;
    }
    return own;
}

}  // namespace sys_tests
