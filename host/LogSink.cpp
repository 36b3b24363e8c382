#include "host/LogSink.h"

#include <cstdarg>
#include <utility>

#include "common/util/Strings.h"

namespace host {

LogSink::LogSink(Receiver receiver) : receiver_(std::move(receiver)) {}

void LogSink::Log(std::uint32_t level, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    LogLine line{level, util::FormatV(format, arguments)};
    va_end(arguments);
    receiver_(line);
}

}  // namespace host
