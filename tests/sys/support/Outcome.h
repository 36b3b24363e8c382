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
Outcome WmiFailure(const std::string& message, std::int32_t line, std::uint32_t result);
Outcome DomainFailure(const std::string& message, std::int32_t line, std::int32_t category,
                      std::uint32_t code);
Outcome RegistryFailure(const std::string& message, std::int32_t line, std::int32_t category,
                        std::int32_t code);
Outcome DllFailure(const std::string& message, std::int32_t line, std::int32_t category,
                   std::int32_t code);
Outcome FileFailure(const std::string& message, std::int32_t line, std::int32_t code);
Outcome ChildFailure(const std::string& message, std::int32_t line, std::int32_t category);
Outcome AddressFailure(std::int32_t code);
Outcome ComFailure(std::uint32_t result);
Outcome RefusedArgument(const std::string& message);

}  // namespace sys_tests
