#include "common/sys/DllProxy.h"

#include <windows.h>

#include <utility>

#include "common/err/GeneralError.h"

namespace sys {

namespace {

CDllProxyError ProxyError(const char* message, std::int32_t line, std::int32_t category) {
    return {message, line, category, static_cast<std::int32_t>(GetLastError())};
}

}  // namespace

DllProxy::DllProxy(std::string filename) : filename_(std::move(filename)) {}

DllProxy::~DllProxy() {
    if (module_ != nullptr) {
        FreeLibrary(module_);
    }
}

void DllProxy::Load() {
    if (filename_.empty()) {
        throw ProxyError("DllProxy::Load - No Filename", 64, 0);
    }
    HMODULE const loaded = LoadLibraryA(filename_.c_str());
    if (loaded == nullptr) {
        throw ProxyError("DllProxy::Load - Load Library Failed", 70, 0);
    }
    if (module_ != nullptr) {
        FreeLibrary(module_);  // loaded again: one reference is held, not two
    }
    module_ = loaded;
}

void DllProxy::GetProcAddress(void*& slot, const char* name) {
    slot = nullptr;
    if (module_ == nullptr) {
        Load();
    }
    slot = reinterpret_cast<void*>(::GetProcAddress(module_, name));
    if (slot == nullptr) {
        throw ProxyError("DllProxy::GetProcAddress - GetProcAddress Failed", 83, 1);
    }
}

}  // namespace sys
