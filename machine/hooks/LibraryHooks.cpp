// "LibCrypto.dll", which the simulated machine has, lacks, or has without its export. Other
// libraries are real.
#include <windows.h>

#include <algorithm>
#include <string>

#include "machine/Call.h"
#include "machine/Cipher.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/Hooks.h"

namespace machine {
namespace {

constexpr std::string_view kModuleKind = "module";
constexpr std::string_view kCryptoLibrary = "LibCrypto.dll";

/// No real module is loaded here.
char cryptoModule;

HMODULE CryptoModule() {
    return reinterpret_cast<HMODULE>(&cryptoModule);
}

std::uintptr_t IdentityOf(HMODULE module) {
    return reinterpret_cast<std::uintptr_t>(module);
}

/// A program may have an operator new of its own for small blocks. The module frees what it is
/// given here, so its text gets a block that is none of these: all images share the C runtime's
/// memory.
constexpr std::size_t kNoSmallBlock = 4096;

/// The stand-in for the library's function. The module and this library share the string type's
/// layout.
int Decrypt(const std::string& enciphered, std::string& plain) {
    const ServingCore core;
    if (!core) {
        return ERROR_MOD_NOT_FOUND;
    }
    Call call(*core, "Decrypt", {{"enciphered", "***"}});
    const auto result = [&call](int code) {
        call.Note(std::to_string(code), code != 0);
        return code;
    };
    if (const auto fault = call.Fault()) {
        return result(static_cast<int>(*fault));
    }
    const std::string text = Decipher(enciphered);
    if (text.size() > plain.capacity()) {
        plain.reserve(std::max(text.size(), kNoSmallBlock));
    }
    plain.assign(text.data(), text.size());
    return result(0);
}

struct CryptoLibraryByName {
    bool operator()(const Core& /*core*/, LPCSTR name) const {
        return EqualNoCase(OrEmpty(name), kCryptoLibrary);
    }
};

struct OnCryptoModule {
    bool operator()(const Core& /*core*/, HMODULE module, const auto&... /*others*/) const {
        return module == CryptoModule();
    }
};

HMODULE ServeLoadLibraryA(Core& core, LPCSTR name) {
    Call call(core, "LoadLibraryA", {{"name", name}});
    if (const auto fault = call.Fault()) {
        call.Note("null", true, *fault);
        return nullptr;
    }
    if (call->state.system.libCrypto == CryptoLibrary::kAbsent) {
        call.Note("null", true, ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    call->ledger.HandOut(kModuleKind, IdentityOf(CryptoModule()), call.Origin());
    call.Note("module");
    return CryptoModule();
}

FARPROC ServeGetProcAddress(Core& core, HMODULE /*module*/, LPCSTR name) {
    Call call(core, "GetProcAddress", {{"name", IS_INTRESOURCE(name) ? "by number" : name}});
    if (const auto fault = call.Fault()) {
        call.Note("null", true, *fault);
        return nullptr;
    }
    const bool exported = call->state.system.libCrypto == CryptoLibrary::kPresent &&
                          !IS_INTRESOURCE(name) && std::string_view(name) == "Decrypt";
    if (!exported) {
        call.Note("null", true, ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    call.Note("function");
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Decrypt));
}

BOOL ServeFreeLibrary(Core& core, HMODULE module) {
    Call call(core, "FreeLibrary", {}, Failing::kNever);
    if (!call->ledger.TakeBack(kModuleKind, IdentityOf(module))) {
        call->ledger.RecordMisuse(call.Origin() + ": the library is not loaded");
        return call.Boolean(false, ERROR_MOD_NOT_FOUND);
    }
    return call.Boolean(true);
}

}  // namespace

void AddLibraryHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeFreeLibrary, OnCryptoModule>("FreeLibrary"));
    hooks.push_back(MakeHook<&ServeGetProcAddress, OnCryptoModule>("GetProcAddress"));
    hooks.push_back(MakeHook<&ServeLoadLibraryA, CryptoLibraryByName>("LoadLibraryA"));
}

}  // namespace machine
