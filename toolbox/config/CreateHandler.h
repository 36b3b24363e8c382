#pragma once

#include <memory>
#include <string>

#include "toolbox/config/MessageHandler.h"

/// Makes the handler for a message. Kind and name are compared byte by byte. Null for a kind that
/// is not known, and when memory is short.
std::unique_ptr<CMessageHandler> CreateHandler(const std::string& kind, const std::string& name);
