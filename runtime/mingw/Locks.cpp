// The locks that GCC's C++ library takes from winpthreads. Theirs want memory and handles at first
// use, and the handles stay behind when the agent unloads the module. Nothing in the module calls
// this file; the linker takes its functions in the place of theirs.
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <utility>

namespace {

/// The library locks for a few instructions and calls nobody meanwhile who waits, so that one lock
/// can stand for all of its mutexes, and one condition for all of its conditions.
class LibraryLock {
public:
    void Enter() {
        if (owner_ != GetCurrentThreadId()) {
            AcquireSRWLockExclusive(&lock_);
            owner_ = GetCurrentThreadId();
        }
        ++depth_;
    }
    void Leave() {
        if (--depth_ == 0) {
            owner_ = 0;
            ReleaseSRWLockExclusive(&lock_);
        }
    }
    /// Whoever waits looks again at what it waits for.
    void Wait() {
        owner_ = 0;
        const int depth = std::exchange(depth_, 0);
        SleepConditionVariableSRW(&condition_, &lock_, INFINITE, 0);
        owner_ = GetCurrentThreadId();
        depth_ = depth;
    }
    void WakeAll() { WakeAllConditionVariable(&condition_); }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE condition_ = CONDITION_VARIABLE_INIT;
    std::atomic<DWORD> owner_ = 0;  // no thread has the id 0
    int depth_ = 0;                 // of its entries
};

constinit LibraryLock libraryLock;

}  // namespace

// As <pthread.h> of winpthreads declares them, whose mutexes and conditions are of this type.
using PthreadObject = std::intptr_t;

extern "C" {

int pthread_mutex_init(PthreadObject* /*mutex*/, const unsigned* /*attributes*/) {
    return 0;
}
int pthread_mutex_destroy(PthreadObject* /*mutex*/) {
    return 0;
}
int pthread_mutex_lock(PthreadObject* /*mutex*/) {
    libraryLock.Enter();
    return 0;
}
int pthread_mutex_unlock(PthreadObject* /*mutex*/) {
    libraryLock.Leave();
    return 0;
}
int pthread_cond_wait(PthreadObject* /*condition*/, PthreadObject* /*mutex*/) {
    libraryLock.Wait();
    return 0;
}
int pthread_cond_broadcast(PthreadObject* /*condition*/) {
    libraryLock.WakeAll();
    return 0;
}
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): theirs say nothing.
int pthread_once(long* done, void (*function)()) {
    libraryLock.Enter();
    if (*done == 0) {
        function();
        *done = 1;
    }
    libraryLock.Leave();
    return 0;
}
}
