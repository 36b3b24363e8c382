// The registry under HKEY_LOCAL_MACHINE.
#include <windows.h>

#include <algorithm>

#include "machine/Call.h"
#include "machine/Text.h"
#include "machine/hooks/Hooks.h"
#include "machine/model/RegistryView.h"

namespace machine {
namespace {

constexpr std::string_view kKeyKind = "HKEY";

std::uintptr_t HandleOf(HKEY key) {
    return reinterpret_cast<std::uintptr_t>(key);
}

/// The path of an open key; nothing when the handle is none.
std::optional<std::string> PathOf(Call& call, HKEY key) {
    if (key == HKEY_LOCAL_MACHINE) {
        return std::string();
    }
    const auto found = call->openKeys.find(HandleOf(key));
    if (found != call->openKeys.end()) {
        return found->second;
    }
    call.Unexpected("a root key other than HKEY_LOCAL_MACHINE or an open key");
    return std::nullopt;
}

void HandOutKey(Call& call, std::string path, HKEY* key) {
    const std::uintptr_t handle = call->NewHandle();
    call->ledger.HandOut(kKeyKind, handle, call.Origin(path));
    call->openKeys.emplace(handle, std::move(path));
    *key = reinterpret_cast<HKEY>(handle);
}

LSTATUS ServeRegOpenKeyExA(Core& core, HKEY root, LPCSTR subkey, DWORD, REGSAM access, PHKEY key) {
    Call call(core, "RegOpenKeyExA", {{"subkey", OrEmpty(subkey)}, {"access", Hex(access)}});
    if (const auto fault = call.Fault()) {
        return call.Status(*fault);
    }
    if (key == nullptr) {
        return call.Status(ERROR_INVALID_PARAMETER);
    }
    const auto base = PathOf(call, root);
    if (!base) {
        return call.Status(ERROR_INVALID_HANDLE);
    }
    std::string path = model::JoinKeyPath(*base, OrEmpty(subkey));
    if (!model::KeyExists(call->state, path)) {
        return call.Status(ERROR_FILE_NOT_FOUND);
    }
    HandOutKey(call, std::move(path), key);
    return call.Status(ERROR_SUCCESS);
}

LSTATUS ServeRegCreateKeyExA(Core& core, HKEY root, LPCSTR subkey, DWORD, LPSTR, DWORD options,
                             REGSAM access, const LPSECURITY_ATTRIBUTES, PHKEY key,
                             LPDWORD disposition) {
    Call call(core, "RegCreateKeyExA",
              {{"subkey", OrEmpty(subkey)}, {"options", Hex(options)}, {"access", Hex(access)}});
    if (const auto fault = call.Fault()) {
        return call.Status(*fault);
    }
    if (key == nullptr || subkey == nullptr) {
        return call.Status(ERROR_INVALID_PARAMETER);
    }
    const auto base = PathOf(call, root);
    if (!base) {
        return call.Status(ERROR_INVALID_HANDLE);
    }
    std::string path = model::JoinKeyPath(*base, subkey);
    if (disposition != nullptr) {
        *disposition =
            model::KeyExists(call->state, path) ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY;
    }
    model::CreateKey(call->state, path);
    HandOutKey(call, std::move(path), key);
    return call.Status(ERROR_SUCCESS);
}

LSTATUS ServeRegQueryValueExA(Core& core, HKEY key, LPCSTR name, LPDWORD, LPDWORD type, LPBYTE data,
                              LPDWORD size) {
    Call call(core, "RegQueryValueExA", {{"name", OrEmpty(name)}});
    if (const auto fault = call.Fault()) {
        return call.Status(*fault);
    }
    if (data != nullptr && size == nullptr) {
        return call.Status(ERROR_INVALID_PARAMETER);
    }
    const auto path = PathOf(call, key);
    if (!path) {
        return call.Status(ERROR_INVALID_HANDLE);
    }
    const auto value = model::FindValue(call->state, *path, OrEmpty(name));
    if (!value) {
        return call.Status(ERROR_FILE_NOT_FOUND);
    }
    if (type != nullptr) {
        *type = value->type;
    }
    const auto needed = static_cast<DWORD>(value->data.size());
    const bool fits = size != nullptr && *size >= needed;
    if (size != nullptr) {
        call.AddArgument("size", std::to_string(*size));
        *size = needed;
    }
    if (data != nullptr) {
        if (!fits) {
            return call.Status(ERROR_MORE_DATA);
        }
        std::ranges::copy(value->data, data);
    }
    return call.Status(ERROR_SUCCESS);
}

LSTATUS ServeRegCloseKey(Core& core, HKEY key) {
    Call call(core, "RegCloseKey");
    if (const auto fault = call.Fault()) {
        call->ledger.Excuse(kKeyKind, HandleOf(key));
        return call.Status(*fault);
    }
    if (call->openKeys.erase(HandleOf(key)) == 0) {
        // Closing a predefined key is allowed and does nothing.
        if (key == HKEY_LOCAL_MACHINE) {
            return call.Status(ERROR_SUCCESS);
        }
        call->ledger.RecordMisuse(call.Origin() + ": the key is not open");
        return call.Status(ERROR_INVALID_HANDLE);
    }
    call->ledger.TakeBack(kKeyKind, HandleOf(key));
    return call.Status(ERROR_SUCCESS);
}

}  // namespace

void AddRegistryHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeRegCloseKey>("RegCloseKey"));
    hooks.push_back(MakeHook<&ServeRegCreateKeyExA>("RegCreateKeyExA"));
    hooks.push_back(MakeHook<&ServeRegOpenKeyExA>("RegOpenKeyExA"));
    hooks.push_back(MakeHook<&ServeRegQueryValueExA>("RegQueryValueExA"));
}

}  // namespace machine
