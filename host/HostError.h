#pragma once

#include <stdexcept>
#include <string>

#include "host/ExitCode.h"

namespace host {

/// Ends the program with one line on standard error and an exit code. The text is in the system
/// code page, as everything that comes from Windows or the command line.
class HostError : public std::runtime_error {
public:
    explicit HostError(const std::string& text, ExitCode exitCode = kFailure)
        : std::runtime_error(text), exitCode_(exitCode) {}

    ExitCode Code() const noexcept { return exitCode_; }

private:
    ExitCode exitCode_;
};

}  // namespace host
