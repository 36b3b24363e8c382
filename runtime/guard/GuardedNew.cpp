// Operator new and delete of the programs and the module of the checked build. The forms that are
// not here call these.
#include <algorithm>
#include <new>

#include "runtime/guard/Guard.h"

void* operator new(std::size_t size, std::align_val_t alignment) {
    void* const block = GuardAllocate(size, static_cast<std::size_t>(alignment));
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
// A block must end at its page's end, so it gets no more alignment than a type of its size can ask
// for.
void* operator new(std::size_t size) {
    const std::size_t lowestBit = size & (~size + 1);
    return operator new (size, std::align_val_t{std::min<std::size_t>(
                                   size == 0 ? 1 : lowestBit, __STDCPP_DEFAULT_NEW_ALIGNMENT__)});
}
void operator delete(void* block) noexcept {
    GuardFree(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    GuardFree(block);
}
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
    GuardFree(block);
}
void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    GuardFree(block);
}
