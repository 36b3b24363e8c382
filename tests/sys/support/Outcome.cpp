#include "tests/sys/support/Outcome.h"

#include <ostream>
#include <stdexcept>

#include "common/err/GeneralError.h"
#include "common/sys/ComError.h"

namespace sys_tests {

namespace {

Outcome Describe(const char* type, const err::CGeneralError& error, std::int32_t category = 0) {
    return {type, error.SourceFile(), error.Line(), error.Message(), category, error.Code()};
}

Outcome Describe(const char* type, const err::CategorizedError& error) {
    return Describe(type, error, error.Category());
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
        return Describe("sys::CWmiError", error);
    } catch (const sys::DomainError& error) {
        return Describe("sys::DomainError", error);
    } catch (const sys::RegistryError& error) {
        return Describe("sys::RegistryError", error);
    } catch (const sys::CDllProxyError& error) {
        return Describe("sys::CDllProxyError", error);
    } catch (const ipc::CIPAddressError& error) {
        return Describe("ipc::CIPAddressError", error);
    } catch (const proc::ChildProcessError& error) {
        return Describe("proc::ChildProcessError", error);
    } catch (const util::CFileIOError& error) {
        return Describe("util::CFileIOError", error);
    } catch (const err::CGeneralError& error) {
        return Describe("err::CGeneralError", error);
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
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string message = "COM operation failed. HRESULT is 0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        message += kDigits[(result >> shift) & 0xF];
    }
    return {"sys::ComError", "", 0, message, 0, Signed(result)};
}

Outcome RefusedArgument(const std::string& message) {
    return {"std::invalid_argument", "", 0, message, 0, 0};
}

}  // namespace sys_tests
