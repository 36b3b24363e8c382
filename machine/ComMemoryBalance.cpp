#include "machine/ComMemoryBalance.h"

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <stdexcept>

namespace machine {

namespace {

/// Serves as the allocator's spy: COM calls it before and after each of its own calls.
class Spy : public IMallocSpy {
public:
    /// Registered once and never taken out: COM keeps a spy anyway until every block that it saw is
    /// freed.
    static Spy& Instance();

    std::size_t Serial() const {
        const std::scoped_lock lock(mutex_);
        return serial_;
    }
    /// Blocks still allocated that came at this serial number or later.
    std::size_t Outstanding(std::size_t since) const {
        const std::scoped_lock lock(mutex_);
        return static_cast<std::size_t>(std::ranges::count_if(
            blocks_, [since](const auto& block) { return block.second >= since; }));
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        if (IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IMallocSpy)) {
            *object = static_cast<IMallocSpy*>(this);
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        Count(block);
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL) override {
        Forget(block);
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** toReallocate,
                                        BOOL) override {
        Forget(block);
        *toReallocate = block;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL) override {
        Count(block);
        return block;
    }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int did) override { return did; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}

private:
    void Count(void* block) {
        const std::scoped_lock lock(mutex_);
        if (block != nullptr) {
            blocks_[block] = serial_++;
        }
    }
    /// Blocks from before the spy's time are none of its business.
    void Forget(void* block) {
        const std::scoped_lock lock(mutex_);
        blocks_.erase(block);
    }

    mutable std::mutex mutex_;
    std::map<void*, std::size_t> blocks_;  // and their serial numbers
    std::size_t serial_ = 0;
};

Spy& Spy::Instance() {
    static Spy& instance = []() -> Spy& {
        // Exported but not declared: turns the cache of freed BSTRs off.
        const HMODULE automation = GetModuleHandleW(L"oleaut32.dll");
        if (const auto address = GetProcAddress(automation, "SetOaNoCache")) {
            reinterpret_cast<void(WINAPI*)()>(reinterpret_cast<void*>(address))();
        }
        // Never destroyed: COM may still call it while the process ends.
        alignas(Spy) static std::byte place[sizeof(Spy)];
        Spy* const spy = new (place) Spy;
        if (FAILED(CoRegisterMallocSpy(spy))) {
            throw std::runtime_error("another watcher of COM's memory is registered");
        }
        return *spy;
    }();
    return instance;
}

}  // namespace

ComMemoryBalance::ComMemoryBalance() : since_(Spy::Instance().Serial()) {}

std::size_t ComMemoryBalance::OutstandingBlocks() const {
    return Spy::Instance().Outstanding(since_);
}

}  // namespace machine
