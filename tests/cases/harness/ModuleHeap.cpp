#include "tests/cases/harness/ModuleHeap.h"

#ifdef _MSC_VER
#include <intrin.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <map>
#include <stdexcept>

#include "common/util/Strings.h"
#include "machine/ImportTable.h"

namespace e2e {

ModuleHeap* ModuleHeap::active_ = nullptr;

// Where the function that this stands in returns to.
#ifdef __GNUC__
#define Caller() __builtin_return_address(0)
#else
#define Caller() _ReturnAddress()
#endif

/// What stands in the module's import table in place of the C runtime's functions. Without a
/// watcher they are those functions.
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

    static void* Malloc(std::size_t size) {
#ifndef TOOLBOX_CHECKED
        if (active_ != nullptr && active_->FailsNow()) {
            return nullptr;
        }
#endif
        return Note(std::malloc(size), size, Caller());
    }
    static void* Calloc(std::size_t count, std::size_t size) {
        return Note(std::calloc(count, size), count * size, Caller());
    }
    static void* Realloc(void* block, std::size_t size) {
        Forget(block);
        return Note(std::realloc(block, size), size, Caller());
    }
    static void Free(void* block) {
        std::free(Forget(block));
    }

    // The guard allocator takes every block from here.
    static void* WINAPI Reserve(void* address, SIZE_T size, DWORD kind, DWORD protection) {
        if (active_ != nullptr && active_->FailsNow()) {
            return nullptr;
        }
        return VirtualAlloc(address, size, kind, protection);
    }

    static void* Find(const std::string& function) {
        static const std::map<std::string, void*> rows = {
            {"malloc", reinterpret_cast<void*>(&Malloc)},
            {"calloc", reinterpret_cast<void*>(&Calloc)},
            {"realloc", reinterpret_cast<void*>(&Realloc)},
            {"free", reinterpret_cast<void*>(&Free)},
#ifdef TOOLBOX_CHECKED
            {"VirtualAlloc", reinterpret_cast<void*>(&Reserve)},
#endif
        };
        const auto found = rows.find(function);
        return found == rows.end() ? nullptr : found->second;
    }
};

ModuleHeap::ModuleHeap(HMODULE image) : image_(image) {
    for (const machine::Import& import : machine::ListImports(image)) {
        void* const replacement = Hooks::Find(import.function);
        if (replacement == nullptr) {
            continue;
        }
        DWORD protection = 0;
        if (VirtualProtect(import.place, sizeof(void*), PAGE_READWRITE, &protection) == 0) {
            throw std::runtime_error("the import table cannot be written");
        }
        *import.place = replacement;
        VirtualProtect(import.place, sizeof(void*), protection, &protection);
    }
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

}  // namespace e2e
