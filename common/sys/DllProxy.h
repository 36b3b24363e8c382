#pragma once

#include <string>

struct HINSTANCE__;  // what Windows' HMODULE points to

namespace sys {

/// A library that is loaded when it is first needed and released with this object. Failures are
/// CDllProxyError.
class DllProxy {
public:
    /// Loads nothing yet. A bare name is searched for in the standard Windows order.
    explicit DllProxy(std::string filename);
    virtual ~DllProxy();
    DllProxy(const DllProxy&) = delete;
    DllProxy& operator=(const DllProxy&) = delete;

    void Load();

    /// Loads the library if needed and stores the address of `name` in `slot`, null when it fails.
    void GetProcAddress(void*& slot, const char* name);

private:
    HINSTANCE__* module_ = nullptr;
    std::string filename_;
};

}  // namespace sys
