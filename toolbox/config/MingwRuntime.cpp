// What the statically linked run-time library of mingw-w64 would leave behind each time the agent
// unloads the module: two handles after the first static object of a function, four after the first
// exception. Nothing calls this file; its objects stand in the library's place or run at unload.
#include <malloc.h>
#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

extern "C" {

extern const IMAGE_TLS_DIRECTORY64 _tls_used;
extern IMAGE_DOS_HEADER __ImageBase;

/// The record that the compiler makes for each thread_local variable; the exception handling of the
/// C++ library has one.
struct EmulatedVariable {
    std::size_t size;
    std::size_t alignment;
    std::uintptr_t number;  // in the order of first use, from 1; 0 before
    const void* initial;    // null for zeros
};
}

namespace {

/// One thread's copies of the variables.
struct ThreadVariables {
    std::size_t count;
    void* copies[1];  // as many as `count`, by number - 1; null until used
};

DWORD slot = FLS_OUT_OF_INDEXES;
std::uintptr_t variableCount = 0;
SRWLOCK numbering = SRWLOCK_INIT;

void NTAPI FreeVariables(void* data) {
    auto* const variables = static_cast<ThreadVariables*>(data);
    for (std::size_t i = 0; variables != nullptr && i < variables->count; ++i) {
        _aligned_free(variables->copies[i]);
    }
    std::free(variables);
}

std::uintptr_t NumberOf(EmulatedVariable& variable) {
    AcquireSRWLockExclusive(&numbering);
    if (slot == FLS_OUT_OF_INDEXES) {
        slot = FlsAlloc(FreeVariables);
    }
    if (variable.number == 0) {
        variable.number = ++variableCount;
    }
    const std::uintptr_t number = variable.number;
    ReleaseSRWLockExclusive(&numbering);
    return number;
}

/// Exceptions are thrown with these variables, so that a lack of memory cannot be thrown.
template <class Pointer>
Pointer* OrAbort(Pointer* memory) {
    if (memory == nullptr) {
        std::abort();
    }
    return memory;
}

void*& CopyOf(std::uintptr_t number) {
    auto* variables = static_cast<ThreadVariables*>(FlsGetValue(slot));
    if (variables == nullptr || variables->count < number) {
        const std::size_t count = variables == nullptr ? 0 : variables->count;
        const std::size_t size = offsetof(ThreadVariables, copies) + number * sizeof(void*);
        variables = static_cast<ThreadVariables*>(OrAbort(std::realloc(variables, size)));
        std::fill(variables->copies + count, variables->copies + number, nullptr);
        variables->count = number;
        FlsSetValue(slot, variables);
    }
    return variables->copies[number - 1];
}

/// winpthreads keeps a record with two handles for each thread that took one of its locks, and
/// gives it back when the thread ends, but not when the module goes before the thread.
void ForgetThisThread() {
    const auto* callback =
        reinterpret_cast<const PIMAGE_TLS_CALLBACK*>(_tls_used.AddressOfCallBacks);
    for (; *callback != nullptr; ++callback) {
        (*callback)(&__ImageBase, DLL_THREAD_DETACH, nullptr);
    }
}

/// What is registered first runs last, after the destructors of all static objects.
class UnloadCleanup {
public:
    UnloadCleanup() {
        std::atexit([] {
            ForgetThisThread();
            if (slot != FLS_OUT_OF_INDEXES) {
                FlsFree(slot);  // frees the variables of every thread
            }
        });
    }
};
__attribute__((init_priority(101))) const UnloadCleanup unloadCleanup;

}  // namespace

extern "C" {

/// libgcc's own keeps the variables in a winpthreads key, whose lock costs two handles that nothing
/// gives back.
void* __emutls_get_address(EmulatedVariable* variable);
void* __emutls_get_address(EmulatedVariable* variable) {
    void*& copy = CopyOf(NumberOf(*variable));
    if (copy == nullptr) {
        copy = OrAbort(_aligned_malloc(variable->size,
                                       std::max(variable->alignment, alignof(std::max_align_t))));
        if (variable->initial != nullptr) {
            std::memcpy(copy, variable->initial, variable->size);
        } else {
            std::memset(copy, 0, variable->size);
        }
    }
    return copy;
}
}
