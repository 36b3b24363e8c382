// What GCC's C++ library takes from winpthreads and libgcc: locks, and variables of a thread.
// Theirs want memory and handles at first use: the handles stay behind when the agent unloads the
// module before its thread ends, and without memory the error that there is none cannot even be
// thrown. Nothing in the module calls this file; the linker takes its functions in the place of
// theirs.
#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
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

/// The record that the compiler makes for each thread_local variable; the exception handling of the
/// library has one.
struct EmulatedVariable {
    std::size_t size;
    std::size_t alignment;
    std::uintptr_t place;  // in a thread's record, from 1; 0 before the first use
    const void* initial;   // null for zeros
};

/// One thread's copies of all such variables.
struct ThreadRecord {
    static constexpr std::size_t kCapacity = 128;
    static constexpr std::size_t kUnit = alignof(std::max_align_t);

    std::uint32_t filled;  // a bit for each unit that a filled copy begins in
    alignas(kUnit) std::byte copies[kCapacity];
};

// For the first errors of threads that begin without memory. The library's own reserve, for the
// errors themselves, ends the process too when it is used up.
constinit ThreadRecord reserve[32] = {};
constinit std::atomic<bool> taken[std::size(reserve)];
DWORD slot = FLS_OUT_OF_INDEXES;
std::size_t usedCapacity = 0;

/// Takes no lock: the system calls this with its own held, and Prepare asks for that one with the
/// library's held.
void NTAPI FreeRecord(void* data) {
    auto* const record = static_cast<ThreadRecord*>(data);
    if (record >= std::begin(reserve) && record < std::end(reserve)) {
        *record = {};
        taken[record - reserve] = false;
    } else {
        std::free(record);
    }
}

ThreadRecord* NewRecord() {
    if (void* const memory = std::calloc(1, sizeof(ThreadRecord))) {
        return static_cast<ThreadRecord*>(memory);
    }
    for (std::size_t i = 0; i < std::size(reserve); ++i) {
        if (!taken[i].exchange(true)) {
            return &reserve[i];
        }
    }
    std::abort();
}

/// Gives the variable its place, and this thread a record if it has none.
ThreadRecord& Prepare(EmulatedVariable& variable) {
    libraryLock.Enter();
    if (slot == FLS_OUT_OF_INDEXES) {
        slot = FlsAlloc(FreeRecord);
    }
    if (variable.place == 0) {
        constexpr std::size_t kUnit = ThreadRecord::kUnit;
        variable.place = usedCapacity + 1;
        usedCapacity += (variable.size + kUnit - 1) / kUnit * kUnit;
        if (usedCapacity > ThreadRecord::kCapacity || variable.alignment > kUnit) {
            std::abort();  // not with this library
        }
    }
    auto* record = static_cast<ThreadRecord*>(FlsGetValue(slot));
    if (record == nullptr) {
        record = NewRecord();
        if (FlsSetValue(slot, record) == 0) {
            std::abort();
        }
    }
    libraryLock.Leave();
    return *record;
}

/// What is registered first runs last, after the destructors of all static objects.
class UnloadCleanup {
public:
    UnloadCleanup() {
        std::atexit([] {
            if (slot != FLS_OUT_OF_INDEXES) {
                FlsFree(slot);  // frees the records of every thread
            }
        });
    }
};
__attribute__((init_priority(101))) const UnloadCleanup unloadCleanup;

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

void* __emutls_get_address(EmulatedVariable* variable) {
    // Looking into a slot clears the last error, which whoever catches an error may yet report.
    const DWORD lastError = GetLastError();
    ThreadRecord& record = Prepare(*variable);
    const std::size_t place = variable->place - 1;
    std::byte* const copy = record.copies + place;
    const std::uint32_t bit = 1U << place / ThreadRecord::kUnit;
    if ((record.filled & bit) == 0) {
        if (variable->initial != nullptr) {
            std::memcpy(copy, variable->initial, variable->size);
        }
        record.filled |= bit;
    }
    SetLastError(lastError);
    return copy;
}
}
