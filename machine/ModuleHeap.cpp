#include "machine/ModuleHeap.h"

#ifdef _MSC_VER
#include <intrin.h>
#endif

#include <algorithm>
#include <cstdlib>

#include "common/util/Strings.h"
#include "machine/ImportTable.h"

namespace machine {

ModuleHeap* ModuleHeap::active_ = nullptr;

// Where the function that this stands in returns to.
#ifdef __GNUC__
#define Caller() __builtin_return_address(0)
#else
#define Caller() _ReturnAddress()
#endif

/// What stands in the module's import table in the place of functions that give and take memory.
/// Without a watcher they are those functions.
struct ModuleHeap::Hooks {
    static void* Note(void* block, std::size_t size, const void* caller) {
        if (active_ != nullptr && block != nullptr) {
            active_->blocks_[block] = {size, caller};
        }
        return block;
    }
    static void* Forget(void* block) {
        if (active_ != nullptr) {
            active_->blocks_.erase(block);
        }
        return block;
    }
    static bool IsRefused() { return active_ != nullptr && active_->FailsNow(); }

    static void* Malloc(std::size_t size) {
        return IsRefused() ? nullptr : Note(std::malloc(size), size, Caller());
    }
    static void* Calloc(std::size_t count, std::size_t size) {
        return Note(std::calloc(count, size), count * size, Caller());
    }
    static void* Realloc(void* block, std::size_t size) {
        Forget(block);
        return Note(std::realloc(block, size), size, Caller());
    }
    static void Free(void* block) { std::free(Forget(block)); }

    // The checked build's; they are of the allocator that every image shares.
    static inline void* (*guardAllocate)(std::size_t, std::size_t);
    static inline void (*guardFree)(void*);
    static void* GuardAllocate(std::size_t size, std::size_t alignment) {
        return IsRefused() ? nullptr : Note(guardAllocate(size, alignment), size, Caller());
    }
    static void GuardFree(void* block) { guardFree(Forget(block)); }
};

ModuleHeap::ModuleHeap(HMODULE image) : image_(image) {
    const Hook hooks[] = {
        {"malloc", reinterpret_cast<void*>(&Hooks::Malloc)},
        {"calloc", reinterpret_cast<void*>(&Hooks::Calloc)},
        {"realloc", reinterpret_cast<void*>(&Hooks::Realloc)},
        {"free", reinterpret_cast<void*>(&Hooks::Free)},
        {"GuardAllocate", reinterpret_cast<void*>(&Hooks::GuardAllocate),
         reinterpret_cast<void**>(&Hooks::guardAllocate)},
        {"GuardFree", reinterpret_cast<void*>(&Hooks::GuardFree),
         reinterpret_cast<void**>(&Hooks::guardFree)},
    };
    ImportTable(image, hooks).Leave();
    active_ = this;
}

ModuleHeap::~ModuleHeap() {
    active_ = nullptr;
}

std::vector<std::string> ModuleHeap::Outstanding() const {
    std::vector<std::string> lines;
    for (const auto& [address, block] : blocks_) {
        const auto place = reinterpret_cast<std::uintptr_t>(block.caller) -
                           reinterpret_cast<std::uintptr_t>(image_);
        lines.push_back(std::to_string(block.size) + " bytes, allocated at " +
                        util::Format("+0x%llX", static_cast<unsigned long long>(place)) +
                        " in the module");
    }
    std::ranges::sort(lines);
    return lines;
}

void ModuleHeap::FailAt(std::uint64_t nth, bool stays) noexcept {
    nth_ = nth;
    stays_ = stays;
    requests_ = 0;
}

bool ModuleHeap::FailsNow() noexcept {
    ++requests_;
    return nth_ != 0 && (requests_ == nth_ || (stays_ && requests_ > nth_));
}

}  // namespace machine
