#pragma once

#include <windows.h>

#include <utility>

namespace lang {

/// Owner of one plain platform handle. Traits say its type, its value for none, and how it is
/// closed. Reset adopts, Release gives away, Receive yields the address to fill.
template <typename Traits>
class UniqueHandle {
public:
    using Type = typename Traits::Type;

    UniqueHandle() noexcept = default;
    explicit UniqueHandle(Type handle) noexcept : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    ~UniqueHandle() { Reset(); }

    Type Get() const noexcept { return handle_; }
    explicit operator bool() const noexcept { return handle_ != Traits::None(); }

    /// Closes what it holds, then adopts `handle`. Keeps the thread's last error.
    void Reset(Type handle = Traits::None()) noexcept {
        if (*this && handle != handle_) {
            const DWORD lastError = GetLastError();
            Traits::Close(handle_);
            SetLastError(lastError);
        }
        handle_ = handle;
    }

    /// Gives the handle away.
    Type Release() noexcept { return std::exchange(handle_, Traits::None()); }

    /// Closes what it holds and yields the address for a call to fill.
    Type* Receive() noexcept {
        Reset();
        return &handle_;
    }

private:
    Type handle_ = Traits::None();
};

struct NullHandleTraits {
    using Type = HANDLE;
    static Type None() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};
/// A handle that is null where there is none: a pipe end.
using KernelHandle = UniqueHandle<NullHandleTraits>;

struct FileHandleTraits : NullHandleTraits {
    static Type None() noexcept { return INVALID_HANDLE_VALUE; }
};
/// A handle that is -1 where there is none: what CreateFile returns; a child's process and thread.
using FileHandle = UniqueHandle<FileHandleTraits>;

}  // namespace lang
