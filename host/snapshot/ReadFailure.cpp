#include "host/snapshot/ReadFailure.h"

#include <windows.h>

#include <exception>
#include <stdexcept>

#include "common/err/GeneralError.h"
#include "common/sys/ComError.h"
#include "common/util/Strings.h"
#include "host/configure/Codes.h"

namespace host::snapshot {

namespace {

// Categories of sys::RegistryError.
constexpr std::int32_t kCannotOpen = 3;
constexpr std::int32_t kReadFailed = 6;
constexpr std::int32_t kWrongType = 9;

std::string Gives(const char* call, std::int32_t code) {
    const auto bits = static_cast<std::uint32_t>(code);
    return std::string(call) + " gives " + util::Format(code < 0 ? "0x%X" : "%u", bits) + " (" +
           configure::DescribeCode(bits) + ")";
}

std::string DescribeRegistry(const sys::RegistryError& error) {
    switch (error.Category()) {
        case kCannotOpen:
            return Gives("RegOpenKeyExA", error.Code());
        case kReadFailed:  // its code is not the call's
            return "RegQueryValueExA finds no such value, or may not read it";
        case kWrongType:
            return "RegQueryValueExA gives a value that is no text";
        default:
            return Gives(error.Message(), error.Code());
    }
}

}  // namespace

std::string DescribeReadFailure() {
    try {
        throw;
    } catch (const sys::CWmiError& error) {
        return Gives("the query", error.Code());
    } catch (const sys::RegistryError& error) {
        return DescribeRegistry(error);
    } catch (const sys::DomainError& error) {
        return Gives("LsaOpenPolicy", error.Code());
    } catch (const ipc::CIPAddressError& error) {
        return "Get gives an address that begins with a letter, which is looked up as a host: " +
               Gives("gethostbyname", error.Code());
    } catch (const err::CGeneralError& error) {
        return Gives(error.Message(), error.Code());
    } catch (const sys::ComError& error) {
        return "Get gives something that is no text: " + Gives("VariantChangeType", error.Result());
    } catch (const std::invalid_argument&) {
        return "Get gives NULL, or something else that is no list";
    } catch (const std::exception& error) {
        return error.what();
    }
}

std::string DescribeUnreadProperty(std::int32_t result) {
    return Gives("Get", result);
}

bool IsMissing(const sys::RegistryError& error) {
    return error.Category() == kReadFailed ||
           (error.Category() == kCannotOpen && error.Code() == ERROR_FILE_NOT_FOUND);
}

}  // namespace host::snapshot
