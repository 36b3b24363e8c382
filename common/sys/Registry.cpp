#include "common/sys/Registry.h"

#include <exception>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/sys/RegistryText.h"

namespace sys {

namespace {

enum Category : std::int32_t {
    kUnknown = 0,
    kAlreadyOpen = 1,
    kCloseFailed = 2,
    kCannotOpen = 3,
    kReadFailed = 6,
    kNotOpen = 8,
    kWrongType = 9,
};

RegistryError KeyError(const char* message, std::int32_t line, Category category) {
    return {message, line, category, static_cast<std::int32_t>(GetLastError())};
}

}  // namespace

Registry::Registry() : unwinding_(std::uncaught_exceptions()) {}

// NOLINTNEXTLINE(bugprone-exception-escape): it is declared to.
Registry::~Registry() noexcept(false) {
    if (!open_) {
        return;
    }
    try {
        Close();
    } catch (const RegistryError&) {
        if (std::uncaught_exceptions() <= unwinding_) {
            throw;
        }
    }
}

void Registry::SetKey(HKEY hKey) {
    if (open_) {
        throw KeyError("SetKey( HKEY hKey ) - Registry key already open, cannot set key.", 91,
                       kAlreadyOpen);
    }
    root_ = hKey;
}

void Registry::SetKey(HKEY hKey, const std::string& subkey) {
    if (open_) {
        throw KeyError(
            "SetKey( HKEY hKey, const std::string& subkey ) - Registry key already open, cannot "
            "set key.",
            99, kAlreadyOpen);
    }
    root_ = hKey;
    subkey_ = subkey;
}

void Registry::SetSubkey(const std::string& subkey) {
    if (open_) {
        throw KeyError("SetSubkey() - Registry key already open, cannot set subkey.", 113,
                       kAlreadyOpen);
    }
    subkey_ = subkey;
}

void Registry::Open(bool create, bool readOnly, int view) {
    try {
        REGSAM access = !create && readOnly ? REGSAM{GENERIC_READ} : REGSAM{KEY_ALL_ACCESS};
        if (view == 1) {
            access |= 0x200;  // Windows takes it for the 32-bit view; no caller asks for view 1
        }
        OpenIntern(access, create, false);
    } catch (const RegistryError&) {
        throw;
    } catch (...) {
        throw KeyError("Open() - Unknown error caught.", 150, kUnknown);
    }
}

void Registry::OpenForReading(int view) {
    try {
        Open(false, true, view);
    } catch (const RegistryError&) {
        throw;
    } catch (...) {
        throw KeyError("OpenForReading() - Unknown error caught.", 168, kUnknown);
    }
}

void Registry::OpenIntern(REGSAM access, bool create, bool /*reserved*/) {
    try {
        if (open_) {
            // Names the subkey although it is the open that fails.
            throw KeyError("OpenIntern() - Registry key already open, cannot set subkey.", 760,
                           kAlreadyOpen);
        }
        char noClass[] = "";
        const LSTATUS result =
            create ? RegCreateKeyExA(root_, subkey_.c_str(), 0, noClass, REG_OPTION_NON_VOLATILE,
                                     access, nullptr, &key_, nullptr)
                   : RegOpenKeyExA(root_, subkey_.c_str(), 0, access, &key_);
        if (result != ERROR_SUCCESS) {
            SetLastError(static_cast<DWORD>(result));
            throw KeyError("OpenIntern() - Cannot open key.", 813, kCannotOpen);
        }
        open_ = true;
    } catch (const RegistryError&) {
        throw;
    } catch (...) {
        throw KeyError("OpenIntern() - Unknown error caught.", 777, kUnknown);
    }
}

void Registry::ReadString(const std::string& name, std::string& out) {
    // One character is not enough for a name: such a value is read as the key's default one.
    const char* const valueName = name.size() > 1 ? name.c_str() : nullptr;
    if (!open_) {
        throw KeyError("ReadString() - Key not open, cannot read.", 247, kNotOpen);
    }
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExA(key_, valueName, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) {
        throw KeyError("ReadString() - Read failed.", 268, kReadFailed);
    }
    if (type != REG_SZ && type != REG_EXPAND_SZ) {
        throw KeyError("ReadString() - Incorrect data type.", 256, kWrongType);
    }
    // A byte more than the value has: data may be stored without its terminator.
    std::vector<char> buffer(std::size_t{size} + 1);
    const LSTATUS result = RegQueryValueExA(key_, valueName, nullptr, nullptr,
                                            reinterpret_cast<BYTE*>(buffer.data()), &size);
    out = buffer.data();
    if (result != ERROR_SUCCESS) {
        throw KeyError("ReadString() - Read failed.", 268, kReadFailed);
    }
}

void Registry::Close() {
    if (!open_) {
        throw KeyError("Close() - Registry key not open, cannot close", 187, kNotOpen);
    }
    if (RegCloseKey(key_) != ERROR_SUCCESS) {
        throw KeyError("Close() - RegCloseKey failed", 184, kCloseFailed);
    }
    open_ = false;
}

std::string ReadLocalMachineText(const std::string& subkey, const std::string& name) {
    Registry key;
    key.SetSubkey(subkey);
    key.OpenForReading(0);
    std::string value;
    key.ReadString(name, value);
    key.Close();
    return value;
}

}  // namespace sys
