// The memory of a loaded module: what it has not given back, and how to let it run out.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace machine {

/// Watches the memory functions that the image imports, from construction on and
/// through its unloading; one at a time, on one thread. The image keeps what replaces them: it must
/// be unloaded before the program ends, and a later load of it starts afresh.
class ModuleHeap {
public:
    explicit ModuleHeap(HMODULE image);
    ~ModuleHeap();
    ModuleHeap(const ModuleHeap&) = delete;
    ModuleHeap& operator=(const ModuleHeap&) = delete;

    /// Blocks allocated since construction and not freed, a line each, in order: "24 bytes,
    /// allocated at +0x1234 in the module".
    std::vector<std::string> Outstanding() const;

    /// The calls of operator new that reach its source of memory, counted from 1 since here, fail
    /// at the nth, or from the nth on. 0: none.
    void FailAt(std::uint64_t nth, bool stays) noexcept;
    std::uint64_t Requests() const noexcept { return requests_; }

private:
    struct Hooks;
    bool FailsNow() noexcept;

    static ModuleHeap* active_;
    struct Block {
        std::size_t size;
        const void* caller;
    };
    HMODULE image_;
    std::unordered_map<const void*, Block> blocks_;
    std::uint64_t nth_ = 0;
    bool stays_ = false;
    std::uint64_t requests_ = 0;
};

}  // namespace machine
