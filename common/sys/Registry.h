#pragma once

#include <windows.h>

#include <string>

namespace sys {

/// One registry key, opened and closed in turn. Every misuse and every failed call is a
/// RegistryError that carries the thread's last Windows error; nothing is reported by return codes.
class Registry {
public:
    /// Closed; HKEY_LOCAL_MACHINE with an empty subkey.
    Registry();

    /// Closes an open key. The error of a failing close propagates, unless another one is already
    /// on its way.
    // NOLINTNEXTLINE(bugprone-exception-escape): it is declared to.
    virtual ~Registry() noexcept(false);
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    /// Root and subkey change only while the key is closed.
    void SetKey(HKEY hKey);
    void SetKey(HKEY hKey, const std::string& subkey);
    void SetSubkey(const std::string& subkey);

    /// Reads only when `readOnly` is true and `create` false; any other combination asks for all
    /// access. `view` 1 adds the flag 0x200, which Windows takes for the 32-bit registry; any other
    /// value adds nothing.
    void Open(bool create, bool readOnly, int view);
    void OpenForReading(int view);
    /// `reserved` has no effect.
    void OpenIntern(REGSAM access, bool create, bool reserved);

    /// Reads a REG_SZ or, unexpanded, a REG_EXPAND_SZ value. A name of fewer than two characters
    /// reads the key's default value. `out` is assigned once the value's size is known, also when
    /// reading it then fails.
    void ReadString(const std::string& name, std::string& out);

    void Close();

private:
    bool open_ = false;
    HKEY key_ = nullptr;
    HKEY root_ = HKEY_LOCAL_MACHINE;
    std::string subkey_;
    int unwinding_;  // exceptions in flight when this object was made
};

}  // namespace sys
