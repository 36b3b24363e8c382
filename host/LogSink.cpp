#include "host/LogSink.h"

#include <cstdarg>
#include <string_view>
#include <utility>

#include "common/logging/Phrases.h"
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

void HideAccount(std::string& text) {
    constexpr std::string_view kOpening = logging::kAccount;
    const std::size_t start = text.find(kOpening);
    const std::size_t end = text.rfind('}');
    if (start != std::string::npos && end != std::string::npos && end > start + kOpening.size()) {
        text.replace(start + kOpening.size(), end - start - kOpening.size(), "***");
    }
}

}  // namespace host
