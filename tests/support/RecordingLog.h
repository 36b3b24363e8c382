#pragma once

#include <cstdarg>
#include <string>
#include <vector>

#include "common/logging/LogSink.h"
#include "common/util/Strings.h"

namespace support {

/// Notes lines as "2 text".
class RecordingLog : public logging::ILogSink {
public:
    std::vector<std::string> lines;

    void Log(std::uint32_t level, const char* format, ...) override {
        std::va_list arguments;
        va_start(arguments, format);
        lines.push_back(std::to_string(level) + " " + util::FormatV(format, arguments));
        va_end(arguments);
    }
};

}  // namespace support
