#include "toolbox/config/UpdateInfo.h"

#include <string>

#include "common/util/Strings.h"
#include "toolbox/config/ModuleVersion.h"

namespace {

constexpr const char* kCountField = "Auto-Update-Count";
constexpr const char* kFileName = "morvane-config";
constexpr const char* kSuffix = ".X64.dll";
constexpr const char* kDirectory = "agents\\tovrune\\";

}  // namespace

std::int32_t UpdateInfo::HandleMessage(IHostMessage& message, IHostLogSink& /*log*/) {
    std::int32_t count = 0;  // the host leaves it untouched where the field is absent
    message.ReadInteger(kCountField, &count);

    const std::string number = util::IntToString(count);
    const std::string current = util::Format("%s-%d.%d.%d%s", kFileName, MODULE_VERSION_MAJOR,
                                             MODULE_VERSION_MINOR, MODULE_VERSION_BUILD, kSuffix);
    const std::string pattern = util::Format("%s%s-*%s", kDirectory, kFileName, kSuffix);
    message.WriteText(("Auto-Update-Current" + number).c_str(), current.c_str());
    message.WriteText(("Auto-Update-Pattern" + number).c_str(), pattern.c_str());
    // A host that hands in the largest count must not bring the module to undefined arithmetic.
    message.WriteInteger(kCountField,
                         static_cast<std::int32_t>(static_cast<std::uint32_t>(count) + 1U));
    return 2;
}
