#include "tests/requests/endurance/ProcessState.h"

#include <windows.h>

#include <tlhelp32.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

// Defines its functions under other names than the library has without this.
#define PSAPI_VERSION 2
#include <psapi.h>

namespace endurance {

namespace {

// NtQuerySystemInformation and what it gives for SystemExtendedHandleInformation: not in full in
// the SDK headers.
using QueryFunction = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
constexpr ULONG kExtendedHandles = 64;

struct HandleEntry {
    void* object;
    ULONG_PTR process;
    ULONG_PTR handle;
    ULONG access;
    USHORT backTrace;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

std::size_t CountHandles() {
    std::vector<ULONG_PTR> buffer(4096);
    const auto query = reinterpret_cast<QueryFunction>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    ULONG needed = 0;
    while (query(kExtendedHandles, buffer.data(),
                 static_cast<ULONG>(buffer.size() * sizeof(ULONG_PTR)), &needed) < 0) {
        if (buffer.size() > 1U << 24) {
            throw std::runtime_error("the handle table cannot be read");
        }
        buffer.resize(buffer.size() * 2);
    }
    const auto* const table = reinterpret_cast<const HandleTable*>(buffer.data());
    const ULONG_PTR self = GetCurrentProcessId();
    return static_cast<std::size_t>(
        std::count_if(table->entries, table->entries + table->count,
                      [self](const HandleEntry& entry) { return entry.process == self; }));
}

std::size_t CountModules() {
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), nullptr, 0, &bytes);
    return bytes / sizeof(HMODULE);
}

std::size_t CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::size_t count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    }
    CloseHandle(snapshot);
    return count;
}

std::size_t CountLargeBlocks() {
    constexpr DWORD kLarge = 64 << 10;
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    std::size_t count = 0;
    for (const HANDLE heap : heaps) {
        PROCESS_HEAP_ENTRY block{};
        while (HeapWalk(heap, &block) != FALSE) {
            const bool isInUse = (block.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0;
            count += isInUse && block.cbData >= kLarge ? 1 : 0;
        }
    }
    return count;
}

}  // namespace

ProcessState ReadProcessState() {
    return {CountHandles(), CountModules(), CountThreads(), CountLargeBlocks()};
}

}  // namespace endurance
