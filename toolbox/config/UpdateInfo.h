#pragma once

#include "toolbox/config/MessageHandler.h"

/// Answers "UpdateInfo": which file this module is, and the pattern under which the agent keeps it
/// up to date. Several modules append their pair to one message; "Auto-Update-Count" numbers them.
class UpdateInfo : public CMessageHandler {
public:
    std::int32_t HandleMessage(IHostMessage& message, IHostLogSink& log) override;
};
