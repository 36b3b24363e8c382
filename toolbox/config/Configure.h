#pragma once

#include <cstdint>
#include <string>

#include "toolbox/config/MessageHandler.h"

namespace config {
class ConfigBuilder;
}
class IniFile;

/// Answers "Configure": sets this machine up as the file named in the field "Filename" says, and
/// puts the file away beside the host's executable.
///
/// Reply fields: "Result" is "Success", "Failure" or "Reboot"; a failure adds "Status-Module" and
/// "Status-Code". The result is 1, or 0 without reply fields when there is no such file. Errors of
/// the family become a reply; a file that cannot be put away after that is thrown on.
class Configure : public CMessageHandler {
public:
    std::int32_t HandleMessage(IHostMessage& message, IHostLogSink& log) override;

private:
    std::int32_t Run(IHostMessage& message, config::ConfigBuilder& builder, IniFile& file,
                     const std::string& path);
};
