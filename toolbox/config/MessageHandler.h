#pragma once

#include <cstdint>

#include "common/logging/LogSink.h"
#include "toolbox/config/HostInterface.h"

/// Base of the message handlers. A handler lives for one message.
class CMessageHandler : public logging::ILogSink {
public:
    /// Formats the line and hands it to the host's sink, which formats the finished line once more
    /// (see logging::ILogSink). Does nothing without a sink or a format.
    void Log(std::uint32_t level, const char* format, ...) override LOGGING_PRINTF(3, 4);

    /// Handles `message` and writes the reply into it. Returns the result that DoMagic returns.
    virtual std::int32_t HandleMessage(IHostMessage& message, IHostLogSink& log) = 0;

    /// Where Log writes to; not owned, null until set.
    void SetHostLog(IHostLogSink* log) noexcept { hostLog_ = log; }

private:
    IHostLogSink* hostLog_ = nullptr;
};

/// Answers every message that is not for this module.
class DefaultHandler : public CMessageHandler {
public:
    std::int32_t HandleMessage(IHostMessage& message, IHostLogSink& log) override;
};
