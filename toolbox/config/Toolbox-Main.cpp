#include <cstdint>
#include <memory>
#include <string>

#include "common/err/GeneralError.h"
#include "common/logging/LogSink.h"
#include "common/logging/Phrases.h"
#include "toolbox/config/CreateHandler.h"
#include "toolbox/config/HostInterface.h"
#include "toolbox/config/ModuleVersion.h"

namespace {

constexpr const char* kSource = "Toolbox-Main";

void GetVersion(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* build) {
    *major = MODULE_VERSION_MAJOR;
    *minor = MODULE_VERSION_MINOR;
    *build = MODULE_VERSION_BUILD;
}

std::int32_t Dispatch(IHostMessage* message, IHostLogSink* log) {
    if (message == nullptr || log == nullptr) {
        throw CTBXAPIError(kSource, "DoMagic - Bad Parameter (NULL)", 71, 0);
    }
    const std::string kind = message->GetKind();
    const std::string name = message->GetName();
    log->Log(logging::kTrace, "%s:%d Toolbox::DoMagic - Finding handler for %s=%s", kSource, 77,
             kind.c_str(), name.c_str());

    // The texts are asked for again: what was logged is a copy from before the sink ran.
    const std::string kindAgain = message->GetKind();
    const std::string nameAgain = message->GetName();
    const std::unique_ptr<CMessageHandler> handler = CreateHandler(kindAgain, nameAgain);
    if (!handler) {
        return 0;
    }
    handler->SetHostLog(log);
    return handler->HandleMessage(*message, *log);
}

std::int32_t DoMagic(IHostMessage* message, IHostLogSink* log) {
    try {
        return Dispatch(message, log);
    } catch (const err::CGeneralError& error) {
        if (log != nullptr) {
            log->Log(logging::kMain, "%s:%d Toolbox::DoMagic caught an unhandled exception",
                     kSource, 103);
            log->Log(logging::kMain, logging::kUnhandledError, error.SourceFile(), error.Line(),
                     error.Message(), error.Code());
        }
        return 0;
    }
}

ToolboxAPI toolboxApi = {1, GetVersion, DoMagic};

}  // namespace

extern "C" ToolboxAPI* GetToolboxAPI() {
    return &toolboxApi;
}
