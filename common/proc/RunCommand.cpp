#include "common/proc/RunCommand.h"

#include "common/proc/ChildProcess.h"

namespace proc {

std::int32_t RunCommand(const std::string& commandLine) {
    logging::NullLogSink log;
    CChildProcess child(log, INFINITE);
    return child.ExecuteCmd(nullptr, commandLine.c_str(), {}, {}, true, 1, nullptr);
}

}  // namespace proc
