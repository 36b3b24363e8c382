#pragma once

#include <cstdint>

namespace err {

/// Root of every error that this module throws. Thrown by value, caught by reference; owns nothing,
/// so a copy is a copy of four fields. Both texts are literals that outlive the module's use.
class CGeneralError {
public:
    /// `sourceFile` and `message` are static texts, never null. `line` is part of the interface
    /// that operators search logs for: it is written down where the error arises and does not move
    /// with the code. `code` is a system error code, an HRESULT or a small category number; 0 for
    /// none.
    constexpr CGeneralError(const char* sourceFile, const char* message, std::int32_t line,
                            std::int32_t code) noexcept
        : sourceFile_(sourceFile), message_(message), line_(line), code_(code) {}

    constexpr const char* SourceFile() const noexcept { return sourceFile_; }
    constexpr const char* Message() const noexcept { return message_; }
    constexpr std::int32_t Line() const noexcept { return line_; }
    constexpr std::int32_t Code() const noexcept { return code_; }

private:
    const char* sourceFile_;
    const char* message_;
    std::int32_t line_;
    std::int32_t code_;
};

/// An error that also names the kind of failure within its source. `Code()` stays the system's.
class CategorizedError : public CGeneralError {
public:
    constexpr CategorizedError(const char* sourceFile, const char* message, std::int32_t line,
                               std::int32_t category, std::int32_t code) noexcept
        : CGeneralError(sourceFile, message, line, code), category_(category) {}

    constexpr std::int32_t Category() const noexcept { return category_; }

private:
    std::int32_t category_;
};

}  // namespace err

/// A bad call of the module's entry.
class CTBXAPIError : public err::CGeneralError {
public:
    using CGeneralError::CGeneralError;
};

namespace config {

/// What went wrong with a configuration. Agents see the number as "Status-Code".
enum class ErrorKind : std::int32_t {
    kUnspecified = 0,      ///< the message alone tells: a section is left without adapter, for one
    kUnexpectedEvent = 1,  ///< a setting that makes no sense where it stands
    kEmptyList = 2,        ///< no addresses, or no masks, to set
    kMethodFailed = 4,
    kProgramFailed = 5,
    kCountOutOfRange = 87,
};

/// A failure while reading the configuration or building and running its commands. `Code()` is its
/// kind as a number; `Value()` carries what a called method or program returned, 0 where nothing
/// was called.
class ConfigError : public err::CGeneralError {
public:
    constexpr ConfigError(const char* sourceFile, const char* message, std::int32_t line,
                          ErrorKind kind, std::int32_t value = 0) noexcept
        : CGeneralError(sourceFile, message, line, static_cast<std::int32_t>(kind)),
          value_(value) {}

    constexpr ErrorKind Kind() const noexcept { return static_cast<ErrorKind>(Code()); }
    constexpr std::int32_t Value() const noexcept { return value_; }

private:
    std::int32_t value_;
};

}  // namespace config

namespace sys {

/// A failed WMI query or method. `Code()` is the HRESULT of the step that failed, `LastError()` the
/// thread's last Windows error when it was thrown.
class CWmiError : public err::CGeneralError {
public:
    constexpr CWmiError(const char* message, std::int32_t line, std::int32_t result,
                        std::uint32_t lastError) noexcept
        : CGeneralError("Wmi", message, line, result), lastError_(lastError) {}

    constexpr std::uint32_t LastError() const noexcept { return lastError_; }

private:
    std::uint32_t lastError_;
};

/// A failed domain membership or directory operation.
class DomainError : public err::CategorizedError {
public:
    constexpr DomainError(const char* message, std::int32_t line, std::int32_t category,
                          std::int32_t code) noexcept
        : CategorizedError("Domain", message, line, category, code) {}
};

/// A failed or misused registry operation.
class RegistryError : public err::CategorizedError {
public:
    constexpr RegistryError(const char* message, std::int32_t line, std::int32_t category,
                            std::int32_t code) noexcept
        : CategorizedError("common\\sys\\Registry", message, line, category, code) {}
};

/// A library or an entry point of one that cannot be loaded.
class CDllProxyError : public err::CategorizedError {
public:
    constexpr CDllProxyError(const char* message, std::int32_t line, std::int32_t category,
                             std::int32_t code) noexcept
        : CategorizedError("common\\sys\\DllProxy", message, line, category, code) {}
};

/// A failed impersonation or logon. Nothing throws it: children run as the agent itself.
class CImpersonationError : public err::CGeneralError {
public:
    using CGeneralError::CGeneralError;
};

}  // namespace sys

namespace ipc {

/// A host name that does not resolve.
class CIPAddressError : public err::CGeneralError {
public:
    using CGeneralError::CGeneralError;
};

}  // namespace ipc

namespace proc {

/// A child process whose pipes cannot be made.
class ChildProcessError : public err::CategorizedError {
public:
    constexpr ChildProcessError(const char* message, std::int32_t line, std::int32_t category,
                                std::int32_t code) noexcept
        : CategorizedError("common\\proc\\ChildProcess", message, line, category, code) {}
};

}  // namespace proc

namespace util {

/// A failed file operation.
class CFileIOError : public err::CategorizedError {
public:
    constexpr CFileIOError(const char* message, std::int32_t line, std::int32_t code) noexcept
        : CategorizedError("common\\util\\FileUtils", message, line, 0, code) {}
};

}  // namespace util
