// Handles that any thread may ask about.
#pragma once

#include <windows.h>

#include <mutex>
#include <set>

#include "machine/LeafLock.h"

namespace machine {

class HandleSet {
public:
    void Insert(HANDLE handle) {
        const std::lock_guard lock(lock_);
        handles_.insert(handle);
    }
    bool Contains(HANDLE handle) const {
        const std::lock_guard lock(lock_);
        return handles_.contains(handle);
    }

private:
    mutable LeafLock lock_;
    std::set<HANDLE> handles_;
};

}  // namespace machine
