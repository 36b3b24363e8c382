// A lock for what is read and written without a call to anybody else meanwhile, so that every
// thread may take it, whatever it holds already: the loader's lock, the simulation's.
#pragma once

#include <windows.h>

namespace machine {

/// For std::lock_guard. Not the standard library's mutex, whose calls come back through a patched
/// import table.
class LeafLock {
public:
    constexpr LeafLock() = default;
    LeafLock(const LeafLock&) = delete;
    LeafLock& operator=(const LeafLock&) = delete;

    void lock() { AcquireSRWLockExclusive(&lock_); }
    void unlock() { ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};

}  // namespace machine
