// Storage for toolbox-host's own objects. A run makes and drops hundreds of thousands of small
// ones, for each platform call is recorded, and Wine's heap walks over its free blocks for every
// one of them: half of the time of a large plan was spent there. Small blocks are handed out from
// lists by size here; what is larger comes from the C library, whose heap the module shares: there
// one of them may free what the other allocated.
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>

#include "machine/LeafLock.h"

namespace {

constexpr std::size_t kStep = 16;      // also the alignment and the size of a block's head
constexpr std::size_t kLargest = 512;  // that the lists serve
constexpr std::size_t kPiece = std::size_t{256} << 10;
constexpr std::size_t kRoom = std::size_t{4} << 30;  // of address space, for all pieces

/// Before every block of a list: which one.
struct alignas(kStep) Head {
    std::size_t list;
};

struct FreeBlock {
    FreeBlock* next;
};

Head* HeadOf(void* block) {
    return static_cast<Head*>(block) - 1;
}

class Lists {
public:
    void* Take(std::size_t list) {
        const std::lock_guard lock(lock_);
        if (FreeBlock* const first = free_[list]; first != nullptr) {
            free_[list] = first->next;
            return first;
        }
        const std::size_t size = sizeof(Head) + list * kStep;
        if (committed_ - used_ < size && !CommitPiece()) {
            return nullptr;
        }
        std::byte* const block = room_ + used_ + sizeof(Head);
        HeadOf(block)->list = list;
        used_ += size;
        return block;
    }

    bool Have(const void* block) const noexcept {
        return block >= room_ && block < room_ + kRoom && room_ != nullptr;
    }

    void Give(void* block) {
        const std::size_t list = HeadOf(block)->list;
        const std::lock_guard lock(lock_);
        free_[list] = new (block) FreeBlock{free_[list]};
    }

private:
    bool CommitPiece() {
        if (room_ == nullptr) {
            room_ =
                static_cast<std::byte*>(VirtualAlloc(nullptr, kRoom, MEM_RESERVE, PAGE_NOACCESS));
        }
        if (room_ == nullptr || kRoom - committed_ < kPiece) {
            return false;
        }
        const void* const piece =
            VirtualAlloc(room_ + committed_, kPiece, MEM_COMMIT, PAGE_READWRITE);
        if (piece == nullptr) {
            return false;
        }
        committed_ += kPiece;
        return true;
    }

    machine::LeafLock lock_;
    std::array<FreeBlock*, kLargest / kStep + 1> free_{};
    std::byte* room_ = nullptr;
    std::size_t committed_ = 0;
    std::size_t used_ = 0;
};

constinit Lists lists;

void* Allocate(std::size_t size) {
    void* const block =
        size <= kLargest ? lists.Take(size == 0 ? 1 : (size + kStep - 1) / kStep) : nullptr;
    return block != nullptr ? block : std::malloc(size == 0 ? 1 : size);
}

void Free(void* block) {
    if (lists.Have(block)) {
        lists.Give(block);
    } else {
        std::free(block);
    }
}

}  // namespace

void* operator new(std::size_t size) {
    void* const block = Allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new[](std::size_t size) {
    return operator new(size);
}

void operator delete(void* block) noexcept {
    ::Free(block);
}

void operator delete[](void* block) noexcept {
    ::Free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    ::Free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    ::Free(block);
}
