#include "common/config/command/MethodResult.h"

#include "common/err/GeneralError.h"

namespace config::command {

void CheckMethodResult(std::uint32_t returnValue, const char* source, const char* message,
                       std::int32_t line) {
    if (returnValue != 0 && returnValue != 1) {
        throw ConfigError(source, message, line, ErrorKind::kMethodFailed,
                          static_cast<std::int32_t>(returnValue));
    }
}

}  // namespace config::command
