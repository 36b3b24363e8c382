// Operator new and delete of the checked build. Each block ends where an inaccessible page begins,
// and its pages become inaccessible when it is freed, so that an overrun or a use after free stops
// at the very instruction. Double frees, writes before a block and blocks that are still there when
// the program (or the module) ends are reported; each of these ends the process with kFaultExit.
//
// A program and a module that both link this have an allocator each. A pointer that this one did
// not hand out is passed on to free().

#include "tests/support/GuardAllocator.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr UINT kFaultExit = 77;
constexpr std::size_t kPage = 4096;
constexpr std::size_t kRegionSize = std::size_t{64} << 20;
/// Address space that freed blocks may keep from being used again.
constexpr std::size_t kQuarantine = std::size_t{8} << 30;
/// Each block costs the kernel two mappings, of which a process has 65,530.
constexpr std::size_t kMostGuarded = 12000;
constexpr std::size_t kLargest = std::size_t{4} << 30;
constexpr unsigned char kFresh = 0xA5;
constexpr std::size_t kMostReported = 10;

using Stack = std::array<void*, 8>;

struct Block {
    std::byte* start;
    std::size_t size;
    std::size_t pages;  // 0 in the entries of the pages behind the first
    bool live;
    bool mayLeak;
    Stack allocatedBy;
    Stack freedBy;
};

/// A stretch of address space that is handed out from front to back, once.
struct Region {
    std::byte* base;
    std::size_t pages;
    std::size_t nextPage;
    std::size_t live;
    Block* blocks;  // one for each page; a block's own is that of its first page
    Region* next;
};

Stack CallStack() noexcept {
    Stack stack{};
    RtlCaptureStackBackTrace(2, static_cast<DWORD>(stack.size()), stack.data(), nullptr);
    return stack;
}

void Print(const char* format, ...) noexcept {
    std::array<char, 512> line{};
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    if (length > 0) {
        DWORD written = 0;
        WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(length), &written,
                  nullptr);
    }
}

/// For `addr2line -fCe <image> <address>`: addresses as the image was linked, not as it was loaded.
void PrintStack(const char* what, const Stack& stack) noexcept {
    Print("  %s\n", what);
    for (void* const frame : stack) {
        HMODULE module = nullptr;
        if (frame == nullptr || GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                                       GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                                   static_cast<const char*>(frame), &module) == 0) {
            continue;
        }
        std::array<char, MAX_PATH> path{};
        GetModuleFileNameA(module, path.data(), static_cast<DWORD>(path.size()));
        const char* const name = std::strrchr(path.data(), '\\');
        const auto* const base = reinterpret_cast<const std::byte*>(module);
        const auto* const header = reinterpret_cast<const IMAGE_NT_HEADERS*>(
            base + reinterpret_cast<const IMAGE_DOS_HEADER*>(base)->e_lfanew);
        const auto offset = static_cast<std::size_t>(static_cast<const std::byte*>(frame) - base);
        Print("    %s %#llx\n", name == nullptr ? path.data() : name + 1,
              static_cast<unsigned long long>(header->OptionalHeader.ImageBase + offset));
    }
}

void PrintBlock(const Block& block) noexcept {
    Print("  block of %zu bytes at %p\n", block.size, static_cast<void*>(block.start));
    PrintStack("allocated by", block.allocatedBy);
    if (!block.live) {
        PrintStack("freed by", block.freedBy);
    }
}

/// Takes the process down without another line of its code.
[[noreturn]] void End() noexcept {
    TerminateProcess(GetCurrentProcess(), kFaultExit);
    std::abort();
}

class GuardAllocator {
public:
    void* Allocate(std::size_t size, std::size_t alignment, const Stack& caller) noexcept;
    void Free(void* pointer, const Stack& caller) noexcept;
    void ReportLeaks() noexcept;
    /// Says which block an inaccessible address belongs to; false when it is none of ours.
    bool Explain(const std::byte* address) noexcept;
    /// Blocks of this thread are not reported as leaks; 0 for none.
    void AllowLeaksOf(DWORD thread) noexcept;

private:
    class Lock {
    public:
        explicit Lock(SRWLOCK& lock) noexcept : lock_(lock) { AcquireSRWLockExclusive(&lock_); }
        ~Lock() { ReleaseSRWLockExclusive(&lock_); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        SRWLOCK& lock_;
    };

    Region* RegionFor(std::size_t pages) noexcept;
    Region* Find(const void* pointer) const noexcept;
    void ReleaseRetired() noexcept;
    static Block& BlockAround(Region& region, const std::byte* address) noexcept;

    SRWLOCK lock_ = SRWLOCK_INIT;
    Region* regions_ = nullptr;  // the newest first
    std::size_t reserved_ = 0;
    std::size_t guarded_ = 0;
    std::size_t mayLeak_ = 0;
    DWORD leakingThread_ = 0;
    std::ptrdiff_t unguarded_ = 0;
    bool ended_ = false;
};

Region* GuardAllocator::RegionFor(std::size_t pages) noexcept {
    if (regions_ != nullptr && regions_->pages - regions_->nextPage >= pages) {
        return regions_;
    }
    // Its first page stays inaccessible: it guards the first block's front.
    const std::size_t size = (pages + 1) * kPage > kRegionSize ? (pages + 1) * kPage : kRegionSize;
    void* const base = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
    void* const blocks = VirtualAlloc(nullptr, size / kPage * sizeof(Block),
                                      MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    // Not with malloc, whose blocks tests count.
    auto* const region = static_cast<Region*>(HeapAlloc(GetProcessHeap(), 0, sizeof(Region)));
    if (base == nullptr || blocks == nullptr || region == nullptr) {
        return nullptr;
    }
    *region = {static_cast<std::byte*>(base), size / kPage, 1, 0,
               static_cast<Block*>(blocks),   regions_};
    regions_ = region;
    reserved_ += size;
    ReleaseRetired();
    return region;
}

/// The oldest regions without a live block go first, once the quarantine is full.
void GuardAllocator::ReleaseRetired() noexcept {
    while (reserved_ > kQuarantine) {
        Region** oldest = nullptr;
        for (Region** at = &regions_->next; *at != nullptr; at = &(*at)->next) {
            if ((*at)->live == 0) {
                oldest = at;
            }
        }
        if (oldest == nullptr) {
            return;
        }
        Region* const region = *oldest;
        *oldest = region->next;
        reserved_ -= region->pages * kPage;
        VirtualFree(region->base, 0, MEM_RELEASE);
        VirtualFree(region->blocks, 0, MEM_RELEASE);
        HeapFree(GetProcessHeap(), 0, region);
    }
}

Region* GuardAllocator::Find(const void* pointer) const noexcept {
    const auto* const address = static_cast<const std::byte*>(pointer);
    for (Region* region = regions_; region != nullptr; region = region->next) {
        if (address >= region->base && address < region->base + region->pages * kPage) {
            return region;
        }
    }
    return nullptr;
}

void* GuardAllocator::Allocate(std::size_t size, std::size_t alignment,
                               const Stack& caller) noexcept {
    if (size == 0) {
        size = 1;
    }
    if (size > kLargest || alignment > kPage) {
        return nullptr;
    }
    const Lock lock(lock_);
    if (ended_ || guarded_ >= kMostGuarded) {
        ++unguarded_;
        return alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__ ? nullptr : std::malloc(size);
    }
    const std::size_t room = (size + alignment - 1) / alignment * alignment;
    const std::size_t dataPages = (room + kPage - 1) / kPage;
    Region* const region = RegionFor(dataPages + 1);
    if (region == nullptr) {
        return nullptr;
    }
    std::byte* const first = region->base + region->nextPage * kPage;
    if (VirtualAlloc(first, dataPages * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
        return nullptr;
    }
    std::memset(first, kFresh, dataPages * kPage);
    Block& block = region->blocks[region->nextPage];
    block = {first + dataPages * kPage - room,       size,   dataPages, true,
             leakingThread_ == GetCurrentThreadId(), caller, {}};
    region->nextPage += dataPages + 1;
    ++region->live;
    ++guarded_;
    mayLeak_ += block.mayLeak ? 1 : 0;
    return block.start;
}

void GuardAllocator::Free(void* pointer, const Stack& caller) noexcept {
    const Lock lock(lock_);
    Region* const region = ended_ ? nullptr : Find(pointer);
    if (region == nullptr) {
        --unguarded_;
        std::free(pointer);
        return;
    }
    auto* const start = static_cast<std::byte*>(pointer);
    Block& block = BlockAround(*region, start);
    if (!block.live || block.start != start) {
        Print("guard allocator: %s of %p\n",
              block.start == start ? "second free" : "free inside a block", pointer);
        PrintStack("freed now by", caller);
        PrintBlock(block);
        End();
    }
    std::byte* const first = region->base + (&block - region->blocks) * std::ptrdiff_t{kPage};
    std::byte* const end = first + block.pages * kPage;
    for (const std::byte* at = first; at != end; ++at) {
        if (at == block.start) {
            at += block.size;
            if (at == end) {
                break;
            }
        }
        if (*at != std::byte{kFresh}) {
            Print("guard allocator: written %s the block\n",
                  at < block.start ? "before" : "behind");
            PrintBlock(block);
            End();
        }
    }
    block.live = false;
    block.freedBy = caller;
    VirtualFree(first, block.pages * kPage, MEM_DECOMMIT);
    --region->live;
    --guarded_;
    mayLeak_ -= block.mayLeak ? 1 : 0;
}

void GuardAllocator::AllowLeaksOf(DWORD thread) noexcept {
    const Lock lock(lock_);
    leakingThread_ = thread;
}

Block& GuardAllocator::BlockAround(Region& region, const std::byte* address) noexcept {
    Block* block = &region.blocks[static_cast<std::size_t>(address - region.base) / kPage];
    while (block != region.blocks && block->pages == 0) {
        --block;
    }
    return *block;
}

bool GuardAllocator::Explain(const std::byte* address) noexcept {
    Region* const region = Find(address);
    if (region == nullptr) {
        return false;
    }
    const Block& block = BlockAround(*region, address);
    Print("guard allocator: access to %p, %lld bytes from the start of a %s block\n",
          static_cast<const void*>(address), static_cast<long long>(address - block.start),
          block.live ? "live" : "freed");
    PrintBlock(block);
    return true;
}

void GuardAllocator::ReportLeaks() noexcept {
    const Lock lock(lock_);
    if (guarded_ == mayLeak_ && unguarded_ <= 0) {
        // A module that is loaded again and again must not eat up the address space.
        ended_ = true;
        while (regions_ != nullptr && guarded_ == 0) {
            Region* const region = regions_;
            regions_ = region->next;
            VirtualFree(region->base, 0, MEM_RELEASE);
            VirtualFree(region->blocks, 0, MEM_RELEASE);
            HeapFree(GetProcessHeap(), 0, region);
        }
        return;
    }
    Print("guard allocator: leaked blocks: %zu guarded, %lld unguarded\n", guarded_ - mayLeak_,
          static_cast<long long>(unguarded_ > 0 ? unguarded_ : 0));
    std::size_t reported = 0;
    for (Region* region = regions_; region != nullptr; region = region->next) {
        for (std::size_t page = 0; page < region->nextPage; ++page) {
            const Block& block = region->blocks[page];
            if (block.live && !block.mayLeak && reported++ < kMostReported) {
                PrintBlock(block);
            }
        }
    }
    End();
}

constinit GuardAllocator allocator;
LPTOP_LEVEL_EXCEPTION_FILTER previousFilter = nullptr;

/// The checked build keeps frame pointers, so the calls under a fault can be read off the stack.
Stack FaultStack(const CONTEXT& context) noexcept {
    Stack stack{reinterpret_cast<void*>(context.Rip)};
    auto frame = context.Rbp;
    for (std::size_t depth = 1; depth < stack.size() && frame > context.Rsp &&
                                frame - context.Rsp < (DWORD64{1} << 20) && frame % 8 == 0;
         ++depth) {
        const auto* const words = reinterpret_cast<const DWORD64*>(frame);
        stack[depth] = reinterpret_cast<void*>(words[1]);
        if (words[0] <= frame) {
            break;
        }
        frame = words[0];
    }
    return stack;
}

LONG WINAPI ExplainFault(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters >= 2 &&
        allocator.Explain(reinterpret_cast<const std::byte*>(record.ExceptionInformation[1]))) {
        PrintStack("accessed by", FaultStack(*exception->ContextRecord));
        End();
    }
    if (record.ExceptionCode == EXCEPTION_ILLEGAL_INSTRUCTION) {
        Print("undefined behaviour\n");
        PrintStack("trapped in", FaultStack(*exception->ContextRecord));
        End();
    }
    return previousFilter == nullptr ? EXCEPTION_CONTINUE_SEARCH : previousFilter(exception);
}

/// The first constructor of the image, so that its atexit function is the last to run.
__attribute__((constructor(101))) void Start() {
    previousFilter = SetUnhandledExceptionFilter(ExplainFault);
    std::atexit([] {
        SetUnhandledExceptionFilter(previousFilter);
        allocator.ReportLeaks();
    });
}

/// A block of an odd size must end at its page's end, so it gets no more alignment than a type of
/// that size can ask for.
std::size_t AlignmentFor(std::size_t size) noexcept {
    const std::size_t lowestBit = size & (~size + 1);
    return lowestBit == 0 || lowestBit > __STDCPP_DEFAULT_NEW_ALIGNMENT__
               ? __STDCPP_DEFAULT_NEW_ALIGNMENT__
               : lowestBit;
}

void* AllocateOrNull(std::size_t size, std::size_t alignment) noexcept {
    return allocator.Allocate(size, alignment, CallStack());
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment) {
    for (;;) {
        if (void* const block = allocator.Allocate(size, alignment, CallStack())) {
            return block;
        }
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) {
            throw std::bad_alloc();
        }
        handler();
    }
}

void Free(void* pointer) noexcept {
    if (pointer != nullptr) {
        allocator.Free(pointer, CallStack());
    }
}

}  // namespace

support::LeaksAllowed::LeaksAllowed() noexcept {
    allocator.AllowLeaksOf(GetCurrentThreadId());
}

support::LeaksAllowed::~LeaksAllowed() {
    allocator.AllowLeaksOf(0);
}

// The array forms of the standard library call these.
void* operator new(std::size_t size) {
    return AllocateOrThrow(size, AlignmentFor(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, AlignmentFor(size));
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return AllocateOrNull(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* pointer) noexcept {
    Free(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
    Free(pointer);
}
void operator delete(void* pointer, const std::nothrow_t&) noexcept {
    Free(pointer);
}
void operator delete(void* pointer, std::align_val_t) noexcept {
    Free(pointer);
}
void operator delete(void* pointer, std::size_t, std::align_val_t) noexcept {
    Free(pointer);
}
void operator delete(void* pointer, std::align_val_t, const std::nothrow_t&) noexcept {
    Free(pointer);
}
