#pragma once

#include <cstdint>

/// The interfaces between the agent (the host) and this module. The host may be built by another
/// compiler: they hold no virtual destructor, no overloads and plain C types only, so that the
/// order of the slots is the same everywhere. Texts are narrow, in the system code page,
/// zero-terminated, never null; what the host returns stays the host's and is copied at once.

/// One message and its reply. Implemented by the host, lent to the module for one DoMagic call.
struct IHostMessage {
    virtual void WriteInteger(const char* name, std::int32_t value) = 0;
    virtual void WriteText(const char* name, const char* value) = 0;
    virtual void SetField(const char* name, const char* value) = 0;
    /// "Request", "Reply" or "Internal".
    virtual const char* GetKind() = 0;
    virtual const char* GetName() = 0;
    /// An empty text where the field is absent.
    virtual const char* GetField(const char* name) = 0;
    /// Leaves `value` untouched where the field is absent.
    virtual void ReadInteger(const char* name, std::int32_t* value) = 0;

protected:
    // A virtual destructor would take slots; this one only says that nobody deletes through here.
    ~IHostMessage() = default;
};

/// Where the host logs. Implemented by the host, lent to the module for one DoMagic call.
struct IHostLogSink {
    /// `format` is printf-style; `level` as in logging::Level.
    virtual void Log(std::uint32_t level, const char* format, ...) = 0;

protected:
    ~IHostLogSink() = default;
};

/// What GetToolboxAPI returns: a static record, the same on every call, valid while the module is
/// loaded.
struct ToolboxAPI {
    std::int32_t interfaceVersion;  // 1
    /// Writes 6, 8 and 282. The pointers must not be null.
    void (*GetVersion)(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* build);
    /// Handles one message. Returns the handler's result: 2 the message is not for this module, or
    /// asked for update information (its fields are the answer); 1 a configuration request was
    /// handled (its outcome stands in the reply fields); 0 nothing handled it, its file was
    /// missing, or an error was caught and logged. Null arguments give 0.
    /// Errors outside the module's family (no memory, COM's own, the host's) leave it as C++
    /// exceptions: docs/host-interface.md lists them.
    std::int32_t (*DoMagic)(IHostMessage* message, IHostLogSink* log);
};

extern "C" ToolboxAPI* GetToolboxAPI();
