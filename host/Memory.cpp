// Storage for toolbox-host's own objects. A run makes and drops hundreds of thousands of small
// ones, for each platform call is recorded, and Wine's heap walks over its free blocks for every
// one of them: half of the time of a large plan was spent there. Small blocks are handed out from
// lists by size here; what is larger comes from the C library.
#include <array>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>

#include "machine/LeafLock.h"

namespace {

constexpr std::size_t kStep = 16;      // also the alignment and the size of a block's head
constexpr std::size_t kLargest = 512;  // that the lists serve
constexpr std::size_t kPiece = 256 * 1024;

/// Before every block: which list it came from, 0 for none.
struct alignas(kStep) Head {
    std::size_t list;
};

struct FreeBlock {
    FreeBlock* next;
};

class Lists {
public:
    void* Take(std::size_t list) {
        const std::lock_guard lock(lock_);
        if (FreeBlock* const first = free_[list]; first != nullptr) {
            free_[list] = first->next;
            return first;
        }
        const std::size_t size = sizeof(Head) + list * kStep;
        if (left_ < size) {
            auto* const piece = static_cast<std::byte*>(std::malloc(kPiece));
            if (piece == nullptr) {
                return nullptr;
            }
            next_ = piece;
            left_ = kPiece;
        }
        std::byte* const block = next_;
        next_ += size;
        left_ -= size;
        return block + sizeof(Head);
    }

    void Give(void* block, std::size_t list) {
        const std::lock_guard lock(lock_);
        free_[list] = new (block) FreeBlock{free_[list]};
    }

private:
    machine::LeafLock lock_;
    std::array<FreeBlock*, kLargest / kStep + 1> free_{};
    std::byte* next_ = nullptr;
    std::size_t left_ = 0;
};

constinit Lists lists;

Head* HeadOf(void* block) {
    return reinterpret_cast<Head*>(static_cast<std::byte*>(block) - sizeof(Head));
}

void* Allocate(std::size_t size) {
    if (size <= kLargest) {
        const std::size_t list = (size + kStep - 1) / kStep + (size == 0 ? 1 : 0);
        void* const block = lists.Take(list);
        if (block != nullptr) {
            HeadOf(block)->list = list;
        }
        return block;
    }
    void* const all = size + sizeof(Head) < size ? nullptr : std::malloc(size + sizeof(Head));
    if (all == nullptr) {
        return nullptr;
    }
    return new (all) Head{0} + 1;
}

void Free(void* block) {
    if (block == nullptr) {
        return;
    }
    Head* const head = HeadOf(block);
    if (head->list == 0) {
        std::free(head);
    } else {
        lists.Give(block, head->list);
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
