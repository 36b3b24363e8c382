#include "host/Module.h"

#include <windows.h>

#include <memory>
#include <vector>

#include "common/util/Strings.h"
#include "host/Files.h"
#include "host/HostError.h"
#include "host/Text.h"

namespace host {

namespace {

constexpr std::int32_t kInterfaceVersion = 1;

using GetApiFunction = ToolboxAPI* (*)();

struct ModuleCloser {
    void operator()(void* handle) const noexcept { FreeLibrary(static_cast<HMODULE>(handle)); }
};

std::string ProgramPath() {
    std::vector<char> buffer(MAX_PATH);
    while (true) {
        const auto size = static_cast<DWORD>(buffer.size());
        const DWORD length = GetModuleFileNameA(nullptr, buffer.data(), size);
        if (length < size) {
            return std::string(buffer.data(), length);
        }
        buffer.resize(buffer.size() * 2);
    }
}

}  // namespace

Module::Module(const std::string& path)
    // A bare name is looked up here, not along the search path: the caller named a file.
    : path_(FullPath(path)),
      handle_(LoadLibraryExA(path_.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
    if (handle_ == nullptr) {
        throw HostError("cannot load the module " + path_ + ": " +
                        DescribeSystemError(GetLastError()));
    }
    std::unique_ptr<void, ModuleCloser> loaded(handle_);
    const auto entry = reinterpret_cast<GetApiFunction>(
        reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), "GetToolboxAPI")));
    if (entry == nullptr) {
        throw HostError(path_ + " is no module: it does not export GetToolboxAPI");
    }
    api_ = entry();
    if (api_ == nullptr || api_->interfaceVersion != kInterfaceVersion) {
        throw HostError(path_ + " speaks another version of the interface: " +
                        (api_ == nullptr ? "none" : util::IntToString(api_->interfaceVersion)) +
                        " instead of " + util::IntToString(kInterfaceVersion));
    }
    static_cast<void>(loaded.release());
}

Module::~Module() {
    ModuleCloser{}(handle_);
}

std::string Module::DefaultPath() {
    const std::string program = ProgramPath();
    const std::string folder = program.substr(0, program.find_last_of("\\/") + 1);
    const auto isThere = [](const std::string& path) {
        return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
    };
    const std::string built = folder + "config.dll";
    const std::string packaged = folder + TOOLBOX_PACKAGED_MODULE;
    return isThere(packaged) && !isThere(built) ? packaged : built;
}

std::string Module::Version::Text() const {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(build);
}

Module::Version Module::GetVersion() const {
    Version version{};
    api_->GetVersion(&version.major, &version.minor, &version.build);
    return version;
}

std::int32_t Module::Send(Message& message, LogSink& log) const {
    // The exception lives in the module's memory and has code there: what it says is copied while
    // the module is loaded.
    try {
        return api_->DoMagic(&message, &log);
    } catch (const std::exception& error) {
        throw HostError(std::string("the module failed: ") + error.what());
    } catch (...) {
        throw HostError("the module failed with an exception of an unknown kind");
    }
}

}  // namespace host
