#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

namespace sys_tests {

/// How a call ended: with nothing, or with one error and everything that the error carries.
/// Compared as a whole, so that a test states a message, its line and its codes in one place.
struct Outcome {
    std::string type;    // "sys::RegistryError"; empty when nothing was thrown
    std::string source;  // empty for errors outside the module's family
    std::int32_t line = 0;
    std::string message;
    std::int32_t category = 0;  // 0 where the class has none
    std::int64_t code = 0;

    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

/// Runs the call. An exception of an unknown class passes.
Outcome OutcomeOf(const std::function<void()>& call);

inline Outcome Success() {
    return {};
}
inline Outcome WmiFailure(const std::string& message, std::int32_t line, std::uint32_t result) {
    return {"sys::CWmiError", "Wmi", line, message, 0, static_cast<std::int32_t>(result)};
}
inline Outcome DomainFailure(const std::string& message, std::int32_t line, std::int32_t category,
                             std::uint32_t code) {
    return {"sys::DomainError", "Domain", line, message, category, static_cast<std::int32_t>(code)};
}
inline Outcome RegistryFailure(const std::string& message, std::int32_t line, std::int32_t category,
                               std::int32_t code) {
    return {"sys::RegistryError", "common\\sys\\Registry", line, message, category, code};
}
inline Outcome DllFailure(const std::string& message, std::int32_t line, std::int32_t category,
                          std::int32_t code) {
    return {"sys::CDllProxyError", "common\\sys\\DllProxy", line, message, category, code};
}
inline Outcome FileFailure(const std::string& message, std::int32_t line, std::int32_t code) {
    return {"util::CFileIOError", "common\\util\\FileUtils", line, message, 0, code};
}
inline Outcome ChildFailure(const std::string& message, std::int32_t line, std::int32_t category) {
    return {"proc::ChildProcessError", "common\\proc\\ChildProcess", line, message, category, 0};
}
inline Outcome AddressFailure(std::int32_t code) {
    return {"ipc::CIPAddressError",
            "common\\ipc\\IpAddress",
            159,
            "IPAddress::Connect Name Resolution Error",
            0,
            code};
}
inline Outcome RefusedArgument(const std::string& message) {
    return {"std::invalid_argument", "", 0, message, 0, 0};
}
Outcome ComFailure(std::uint32_t result);

}  // namespace sys_tests
