#pragma once

#include <cstdint>

// What a declaration of a printf-style function ends in; the positions count `this`.
#ifdef __GNUC__
#define LOGGING_PRINTF(format_position, first_argument) \
    __attribute__((format(printf, format_position, first_argument)))
#else
#define LOGGING_PRINTF(format_position, first_argument)
#endif

namespace logging {

/// Levels of the lines this module writes.
enum Level : std::uint32_t {
    kMain = 0,      ///< errors and the main steps of a request; hosts always write these
    kTrace = 1,     ///< trace detail
    kProgress = 2,  ///< progress of the builder and of its commands
};

/// Where the module's own classes log to.
class ILogSink {
public:
    virtual ~ILogSink() = default;

    /// `format` is printf-style. A line may reach a host that formats the finished line once more:
    /// pass text that came from outside through util::DoublePercents first.
    virtual void Log(std::uint32_t level, const char* format, ...) LOGGING_PRINTF(3, 4) = 0;
};

/// Discards every line.
class NullLogSink : public ILogSink {
public:
    void Log(std::uint32_t /*level*/, const char* /*format*/, ...) override {}
};

}  // namespace logging
