#include "tests/sys/support/Outcome.h"

#include <ostream>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>

#include "common/err/GeneralError.h"
#include "common/lang/ClassName.h"
#include "common/sys/ComError.h"
#include "common/util/Strings.h"

namespace sys_tests {

namespace {

template <class Error>
Outcome Describe(const Error& error) {
    Outcome outcome{lang::ClassName(typeid(error)).substr(6),
                    error.SourceFile(),
                    error.Line(),
                    error.Message(),
                    0,
                    error.Code()};
    if constexpr (std::is_base_of_v<err::CategorizedError, Error>) {
        outcome.category = error.Category();
    }
    return outcome;
}

/// Describes an error of the class, or of one behind it in the list.
template <class Error, class... Derived>
Outcome Catch(const std::function<void()>& call) {
    try {
        if constexpr (sizeof...(Derived) != 0) {
            return Catch<Derived...>(call);
        } else {
            call();
            return Success();
        }
    } catch (const Error& error) {
        return Describe(error);
    }
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    if (outcome.type.empty()) {
        return out << "no error";
    }
    return out << outcome.type << " " << outcome.source << ":" << outcome.line << " \""
               << outcome.message << "\" category " << outcome.category << " code " << outcome.code
               << std::hex << " (0x" << static_cast<std::uint32_t>(outcome.code) << std::dec << ")";
}

Outcome OutcomeOf(const std::function<void()>& call) {
    try {
        return Catch<err::CGeneralError, util::CFileIOError, proc::ChildProcessError,
                     ipc::CIPAddressError, sys::CDllProxyError, sys::RegistryError,
                     sys::DomainError, sys::CWmiError>(call);
    } catch (const sys::ComError& error) {
        return {"sys::ComError", "", 0, error.what(), 0, error.Result()};
    } catch (const std::invalid_argument& error) {
        return RefusedArgument(error.what());
    }
}

Outcome ComFailure(std::uint32_t result) {
    const std::string message = util::Format("COM operation failed. HRESULT is 0x%08X", result);
    return {"sys::ComError", "", 0, message, 0, static_cast<std::int32_t>(result)};
}

}  // namespace sys_tests
