#include "toolbox/config/MessageHandler.h"

#include <cstdarg>
#include <string>

#include "common/util/Strings.h"

void CMessageHandler::Log(std::uint32_t level, const char* format, ...) {
    if (hostLog_ == nullptr || format == nullptr) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    const std::string line = util::FormatV(format, arguments);
    va_end(arguments);
    // The finished line is the format itself: the agent expands it once more.
    hostLog_->Log(level, line.c_str());
}

std::int32_t DefaultHandler::HandleMessage(IHostMessage& /*message*/, IHostLogSink& /*log*/) {
    return 2;
}
