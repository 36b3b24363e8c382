#include <windows.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "runtime/guard/Guard.h"

namespace {

constexpr std::size_t kPage = 4096;
/// The address space that blocks take in turn, round and round: a freed block stays inaccessible
/// until its turn comes again.
constexpr std::size_t kPages = std::size_t{4} << 20;
/// Each live block costs the kernel two mappings, of which a process has 65,530. More blocks than
/// this, and very large ones, come from the C library.
constexpr std::size_t kMostGuarded = 12000;
constexpr std::size_t kMostPages = kPages / 16;

using Stack = std::array<void*, 5>;

struct Block {
    std::byte* start;
    std::size_t size;
    std::size_t pages;  // with the inaccessible one at the end
    bool live;
    Stack allocatedBy;
    Stack freedBy;
};

Stack CallStack() noexcept {
    Stack stack{};
    RtlCaptureStackBackTrace(2, static_cast<DWORD>(stack.size()), stack.data(), nullptr);
    return stack;
}

/// For `addr2line -fCe <image> <address>`: addresses as the image was linked, not as it was loaded.
void PrintStack(const char* what, const Stack& stack) noexcept {
    std::fprintf(stderr, "  %s\n", what);
    for (void* const frame : stack) {
        void* image = nullptr;
        if (frame == nullptr || RtlPcToFileHeader(frame, &image) == nullptr) {
            continue;
        }
        std::array<char, MAX_PATH> path{};
        GetModuleFileNameA(static_cast<HMODULE>(image), path.data(), MAX_PATH);
        const auto* const base = static_cast<const std::byte*>(image);
        const auto* const header = reinterpret_cast<const IMAGE_NT_HEADERS*>(
            base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        std::fprintf(stderr, "    %s %#llx\n", path.data(),
                     header->OptionalHeader.ImageBase +
                         static_cast<ULONGLONG>(static_cast<const std::byte*>(frame) - base));
    }
}

void Explain(const char* what, const void* address, const Block& block) noexcept {
    std::fprintf(stderr, "guard allocator: %s %p, %td bytes from the start of a %s block of %zu\n",
                 what, address, static_cast<const std::byte*>(address) - block.start,
                 block.live ? "live" : "freed", block.size);
    PrintStack("allocated by", block.allocatedBy);
    PrintStack("freed by", block.freedBy);
    std::fflush(stderr);
}

std::byte* Reserve(std::size_t size, DWORD kind, DWORD protection) noexcept {
    void* const pages = VirtualAlloc(nullptr, size, kind, protection);
    if (pages == nullptr) {
        std::abort();
    }
    return static_cast<std::byte*>(pages);
}

class Arena {
public:
    void* Allocate(std::size_t size, std::size_t alignment) noexcept {
        const std::lock_guard lock(mutex_);
        const std::size_t room = (size + alignment - 1) / alignment * alignment;
        const std::size_t pages = (room + kPage - 1) / kPage + 1;
        if (live_ >= kMostGuarded || pages > kMostPages) {
            return alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__ ? nullptr : std::malloc(size);
        }
        const std::size_t first = FindRoom(pages);
        std::byte* const data = base_ + first * kPage;
        std::byte* const start = data + (pages - 1) * kPage - room;
        const void* const committed =
            room == 0 ? data : VirtualAlloc(data, room, MEM_COMMIT, PAGE_READWRITE);
        if (committed == nullptr) {
            return nullptr;
        }
        std::memset(start, 0xA5, room);
        std::fill_n(firstPage_ + first, pages, static_cast<std::uint32_t>(first));
        blocks_[first] = {start, size, pages, true, CallStack(), {}};
        next_ = first + pages;
        ++live_;
        return start;
    }

    void Free(void* pointer) noexcept {
        const std::lock_guard lock(mutex_);
        Block* const block = Find(pointer);
        if (block == nullptr) {
            std::free(pointer);
            return;
        }
        if (!block->live || block->start != pointer) {
            Explain("free of", pointer, *block);
            PrintStack("now freed by", CallStack());
            TerminateProcess(GetCurrentProcess(), 77);
        }
        block->live = false;
        block->freedBy = CallStack();
        VirtualFree(base_ + (block - blocks_) * std::ptrdiff_t{kPage}, block->pages * kPage,
                    MEM_DECOMMIT);
        --live_;
    }

    /// The block that an address belongs or belonged to; null when it is none of ours.
    Block* Find(const void* address) const noexcept {
        const auto* const place = static_cast<const std::byte*>(address);
        return place < base_ || place >= base_ + kPages * kPage
                   ? nullptr
                   : &blocks_[firstPage_[static_cast<std::size_t>(place - base_) / kPage]];
    }

private:
    /// The next pages of which no live block has one.
    std::size_t FindRoom(std::size_t pages) const noexcept {
        std::size_t first = next_;
        for (std::size_t page = first; page < first + pages; ++page) {
            if (first + pages > kPages) {
                page = first = 0;
            }
            if (IsTaken(page)) {
                first = firstPage_[page] + blocks_[firstPage_[page]].pages;
                page = first - 1;
            }
        }
        return first;
    }

    /// A page's last block may since have given way to a shorter one that begins at the same page.
    bool IsTaken(std::size_t page) const noexcept {
        const Block& block = blocks_[firstPage_[page]];
        return block.live && page < firstPage_[page] + block.pages;
    }

    std::mutex mutex_;
    std::byte* const base_ = Reserve(kPages * kPage, MEM_RESERVE, PAGE_NOACCESS);
    // By a block's first page; and by each page the first one of the block that last had it.
    Block* const blocks_ = reinterpret_cast<Block*>(
        Reserve(kPages * sizeof(Block), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    std::uint32_t* const firstPage_ = reinterpret_cast<std::uint32_t*>(
        Reserve(kPages * sizeof(std::uint32_t), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    std::size_t next_ = 1;  // what lies before the first block is inaccessible too
    std::size_t live_ = 0;
};

Arena arena;

LONG CALLBACK ExplainFault(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2) {
        const auto* const address = reinterpret_cast<const void*>(record.ExceptionInformation[1]);
        if (const Block* const block = arena.Find(address)) {
            Explain("access to", address, *block);
        }
    }
    return EXCEPTION_CONTINUE_SEARCH;  // and the process crashes
}

[[maybe_unused]] void* const handler = AddVectoredExceptionHandler(1, &ExplainFault);

/// The thread's last error, which waiting for the lock changes, as the C library's allocator keeps
/// it.
class LastErrorKept {
public:
    LastErrorKept() = default;
    LastErrorKept(const LastErrorKept&) = delete;
    LastErrorKept& operator=(const LastErrorKept&) = delete;
    ~LastErrorKept() { SetLastError(error_); }

private:
    DWORD error_ = GetLastError();
};

}  // namespace

void* GuardAllocate(std::size_t size, std::size_t alignment) noexcept {
    const LastErrorKept kept;
    return arena.Allocate(size, alignment);
}

void GuardFree(void* block) noexcept {
    const LastErrorKept kept;
    if (block != nullptr) {
        arena.Free(block);
    }
}
