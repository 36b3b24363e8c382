// Where GCC's C++ library keeps the errors that a thread is handling. Its own place is allocated at
// a thread's first error: it wants memory and a slot that the agent's process may have run out of,
// and ends the process without them. Here the place is part of what the loader makes for each
// thread when it loads the module or starts the thread, and frees with it, so that every thread
// that can call the module can have an error in it. (The error itself, where memory is short, comes
// from what the library has set aside since the module was loaded.)
#include <windows.h>

#include <cxxabi.h>

#include <cstddef>
#include <cstdint>

extern "C" {
// Of the compiler's start-up code: the image's number among the images with such data, and the
// begin of what each thread's copy starts as.
extern ULONG _tls_index;
extern char* _tls_start;
}

namespace __cxxabiv1 {

/// As the C++ ABI has it; zeros stand for a thread that handles nothing.
struct __cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

}  // namespace __cxxabiv1

namespace {

// This compiler's thread_local would allocate. The linker sorts the section between the begin and
// the end of the data that the loader copies for each thread; this original is never used.
[[gnu::section(".tls$M")]] abi::__cxa_eh_globals original = {};

abi::__cxa_eh_globals* OfThisThread() {
    std::byte* const* copies = nullptr;  // of the thread, by image
    asm volatile("movq %%gs:0x58, %0" : "=r"(copies));
    const std::uintptr_t offset =
        reinterpret_cast<std::uintptr_t>(&original) - reinterpret_cast<std::uintptr_t>(&_tls_start);
    return reinterpret_cast<abi::__cxa_eh_globals*>(copies[_tls_index] + offset);
}

}  // namespace

namespace __cxxabiv1 {

// The linker takes these in the place of the library's.
extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
    return OfThisThread();
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
    return OfThisThread();
}

}  // namespace __cxxabiv1
