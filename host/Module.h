#pragma once

#include <cstdint>
#include <string>

#include "host/LogSink.h"
#include "host/Message.h"

namespace host {

/// The module's DLL, loaded for the life of the object.
class Module {
public:
    struct Version {
        std::uint32_t major;
        std::uint32_t minor;
        std::uint32_t build;

        /// "6.8.282"
        std::string Text() const;
    };

    /// Loads the file. Throws HostError when it cannot be loaded, has no GetToolboxAPI or speaks
    /// another version of the interface.
    explicit Module(const std::string& path);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    /// "config.dll" in the directory of this program; where there is none, as in a package, the
    /// module under the name that it announces for updates, if that is there.
    static std::string DefaultPath();

    const std::string& Path() const noexcept { return path_; }
    /// The HMODULE, for whoever looks into the loaded image.
    void* Handle() const noexcept { return handle_; }

    std::int32_t InterfaceVersion() const noexcept { return api_->interfaceVersion; }
    Version GetVersion() const;

    /// Hands the message to the module and returns its result. Throws HostError when the module
    /// lets an exception escape; the reply fields written until then stay in the message.
    std::int32_t Send(Message& message, LogSink& log) const;

private:
    std::string path_;
    void* handle_;
    const ToolboxAPI* api_ = nullptr;
};

}  // namespace host
