#include "tests/common/sys/Outcome.h"

#include <stdexcept>
#include <type_traits>
#include <typeinfo>

#include "common/err/GeneralError.h"
#include "common/lang/ClassName.h"
#include "common/sys/ComError.h"

namespace sys_tests {

namespace {

/// Describes an error of the class, or of one after it in the list.
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
        std::int32_t category = 0;
        if constexpr (std::is_base_of_v<err::CategorizedError, Error>) {
            category = error.Category();
        }
        return Failure(lang::ClassName(typeid(error)).substr(6) + " " + error.SourceFile(),
                       error.Line(), error.Message(), category, error.Code());
    }
}

}  // namespace

Outcome OutcomeOf(const std::function<void()>& call) {
    try {
        return Catch<err::CGeneralError, util::CFileIOError, proc::ChildProcessError,
                     ipc::CIPAddressError, sys::CDllProxyError, sys::RegistryError,
                     sys::DomainError, sys::CWmiError>(call);
    } catch (const sys::ComError& error) {
        return std::string("sys::ComError ") + error.what();
    } catch (const std::invalid_argument& error) {
        return RefusedArgument(error.what());
    }
}

}  // namespace sys_tests
