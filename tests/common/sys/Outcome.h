#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "common/util/Strings.h"

namespace sys_tests {

/// How a call ended: empty, or the one error with everything that it carries, so that a test states
/// a message, its line and its codes in one place:
/// "sys::CDllProxyError common\sys\DllProxy:64 DllProxy::Load - No Filename (category 0, code 5)".
using Outcome = std::string;

/// Runs the call. An exception of an unknown class passes.
Outcome OutcomeOf(const std::function<void()>& call);

inline Outcome Success() {
    return {};
}
/// `category` is 0 where the class has none.
inline Outcome Failure(const std::string& typeAndSource, std::int32_t line,
                       const std::string& message, std::int32_t category, std::int32_t code) {
    return util::Format("%s:%d %s (category %d, code %d)", typeAndSource.c_str(), line,
                        message.c_str(), category, code);
}
inline Outcome WmiFailure(const std::string& message, std::int32_t line, std::uint32_t result) {
    return Failure("sys::CWmiError Wmi", line, message, 0, static_cast<std::int32_t>(result));
}
inline Outcome DomainFailure(const std::string& message, std::int32_t line, std::int32_t category,
                             std::uint32_t code) {
    return Failure("sys::DomainError Domain", line, message, category,
                   static_cast<std::int32_t>(code));
}
inline Outcome RegistryFailure(const std::string& message, std::int32_t line, std::int32_t category,
                               std::int32_t code) {
    return Failure("sys::RegistryError common\\sys\\Registry", line, message, category, code);
}
inline Outcome DllFailure(const std::string& message, std::int32_t line, std::int32_t category,
                          std::int32_t code) {
    return Failure("sys::CDllProxyError common\\sys\\DllProxy", line, message, category, code);
}
inline Outcome FileFailure(const std::string& message, std::int32_t line, std::int32_t code) {
    return Failure("util::CFileIOError common\\util\\FileUtils", line, message, 0, code);
}
inline Outcome ChildFailure(const std::string& message, std::int32_t line, std::int32_t category) {
    return Failure("proc::ChildProcessError common\\proc\\ChildProcess", line, message, category,
                   0);
}
inline Outcome AddressFailure(std::int32_t code) {
    return Failure("ipc::CIPAddressError common\\ipc\\IpAddress", 159,
                   "IPAddress::Connect Name Resolution Error", 0, code);
}
inline Outcome RefusedArgument(const std::string& message) {
    return "std::invalid_argument " + message;
}
inline Outcome ComFailure(std::uint32_t result) {
    return util::Format("sys::ComError COM operation failed. HRESULT is 0x%08X", result);
}

}  // namespace sys_tests
