#include "toolbox/config/Configure.h"

#include <memory>
#include <string>

#include "common/config/Analyzer.h"
#include "common/config/ConfigBuilder.h"
#include "common/err/GeneralError.h"
#include "common/logging/Phrases.h"
#include "common/sys/CryptoDll.h"
#include "common/util/FileUtils.h"
#include "common/util/Strings.h"
#include "toolbox/config/ConfigurationFileEvents.h"
#include "toolbox/config/IniFile.h"

namespace {

using logging::kMain;
using logging::kTrace;

/// Moves the file beside the host's executable, so that it is not applied twice. A file of that
/// name there is replaced; a file that already stands there stays.
void PutAway(const std::string& path) {
    const std::string target =
        util::Split(util::ExecutablePath()).directory + "\\" + util::Split(path).fileName;
    if (util::FileExists(target)) {
        if (util::StandsAt(path, target)) {
            return;
        }
        util::DeleteFile(target);
    }
    util::MoveFile(path, target);
}

void ReportFailure(IHostMessage& message, const err::CGeneralError& error) {
    message.SetField("Status-Module", "Win32");
    message.SetField("Status-Code", util::IntToString(error.Code()).c_str());
}

}  // namespace

std::int32_t Configure::HandleMessage(IHostMessage& message, IHostLogSink& /*log*/) {
    Log(kTrace, "Configure::HandleMessage");
    config::ConfigBuilder builder(*this);
    IniFile file;

    const std::string path = message.GetField("Filename");
    const std::string shownPath = util::DoublePercents(path);
    Log(kMain, "Configure::HandleMessage(): config file=%s", shownPath.c_str());
    if (!util::FileExists(path)) {
        Log(kMain, "Configure::HandleMessage(): File %s does not exist", shownPath.c_str());
        return 0;
    }
    try {
        return Run(message, builder, file, path);
    } catch (const config::ConfigError& error) {
        // Reply, then log; below log, then reply: hosts that record both find them in this order.
        message.SetField("Result", "Failure");
        Log(kMain, "%s%x", logging::kCaughtConfigError, error.Code());
        ReportFailure(message, error);
    } catch (const err::CGeneralError& error) {
        Log(kMain, "%s%x", logging::kCaughtOtherError, error.Code());
        message.SetField("Result", "Failure");
        ReportFailure(message, error);
    }
    PutAway(path);
    return 1;
}

std::int32_t Configure::Run(IHostMessage& message, config::ConfigBuilder& builder, IniFile& file,
                            const std::string& path) {
    file.Load(path, false);  // a file that cannot be read has no sections: nothing to do
    ConfigurationFileEvents events(
        file,
        [&builder](std::uint32_t kind, std::uint32_t type, std::string_view value) {
            builder.ConfigEvent(kind, type, std::string(value));
        },
        [] { return std::make_unique<sys::CryptoDll>(); });
    const bool noReboot = events.SuppressesReboot();
    Log(kTrace, "Configure::HandleMessage(): about to call ConfigEvent()");
    events.SendSections();

    Log(kTrace, "%s", logging::kAboutToAnalyze);
    config::Analyze(builder);
    bool reboot = false;
    const bool succeeded = builder.RunConfig(reboot);
    if (reboot && !noReboot) {
        // The file stays: the agent presents it again after the restart, and the rest runs then.
        message.SetField("Result", "Reboot");
        return 1;
    }
    if (succeeded) {
        message.SetField("Result", "Success");
    } else {
        message.SetField("Result", "Failure");
        message.SetField("Status-Module", logging::kMarkerModule);
        message.SetField("Status-Code", "3");
    }
    PutAway(path);
    return 1;
}
