#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "toolbox/config/HostInterface.h"

namespace host {

/// A finished line of the module's log, in the system code page.
struct LogLine {
    std::uint32_t level;
    std::string text;
};

/// The module names the account of a change in its log, which the configuration file has
/// enciphered: three asterisks take its place.
void HideAccount(std::string& text);

/// Formats what the module logs, as the agent does: what arrives is a format, even where the module
/// hands over a finished line. Lines of every level are passed on.
class LogSink final : public IHostLogSink {
public:
    using Receiver = std::function<void(const LogLine&)>;

    explicit LogSink(Receiver receiver);

    void Log(std::uint32_t level, const char* format, ...) override;

private:
    Receiver receiver_;
};

}  // namespace host
