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

std::int32_t Signed(std::uint32_t code) {
    return static_cast<std::int32_t>(code);
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
        call();
        return Success();
    } catch (const sys::CWmiError& error) {
        return Describe(error);
    } catch (const sys::DomainError& error) {
        return Describe(error);
    } catch (const sys::RegistryError& error) {
        return Describe(error);
    } catch (const sys::CDllProxyError& error) {
        return Describe(error);
    } catch (const ipc::CIPAddressError& error) {
        return Describe(error);
    } catch (const proc::ChildProcessError& error) {
        return Describe(error);
    } catch (const util::CFileIOError& error) {
        return Describe(error);
    } catch (const err::CGeneralError& error) {
        return Describe(error);
    } catch (const sys::ComError& error) {
        return {"sys::ComError", "", 0, error.what(), 0, error.Result()};
    } catch (const std::invalid_argument& error) {
        return RefusedArgument(error.what());
    }
}

Outcome WmiFailure(const std::string& message, std::int32_t line, std::uint32_t result) {
    return {"sys::CWmiError", "Wmi", line, message, 0, Signed(result)};
}

Outcome DomainFailure(const std::string& message, std::int32_t line, std::int32_t category,
                      std::uint32_t code) {
    return {"sys::DomainError", "Domain", line, message, category, Signed(code)};
}

Outcome RegistryFailure(const std::string& message, std::int32_t line, std::int32_t category,
                        std::int32_t code) {
    return {"sys::RegistryError", "common\\sys\\Registry", line, message, category, code};
}

Outcome DllFailure(const std::string& message, std::int32_t line, std::int32_t category,
                   std::int32_t code) {
    return {"sys::CDllProxyError", "common\\sys\\DllProxy", line, message, category, code};
}

Outcome FileFailure(const std::string& message, std::int32_t line, std::int32_t code) {
    return {"util::CFileIOError", "common\\util\\FileUtils", line, message, 0, code};
}

Outcome ChildFailure(const std::string& message, std::int32_t line, std::int32_t category) {
    return {"proc::ChildProcessError", "common\\proc\\ChildProcess", line, message, category, 0};
}

Outcome AddressFailure(std::int32_t code) {
    return {"ipc::CIPAddressError",
            "common\\ipc\\IpAddress",
            159,
            "IPAddress::Connect Name Resolution Error",
            0,
            code};
}

Outcome ComFailure(std::uint32_t result) {
    const std::string message = util::Format("COM operation failed. HRESULT is 0x%08X", result);
    return {"sys::ComError", "", 0, message, 0, Signed(result)};
}

Outcome RefusedArgument(const std::string& message) {
    return {"std::invalid_argument", "", 0, message, 0, 0};
}

}  // namespace sys_tests
