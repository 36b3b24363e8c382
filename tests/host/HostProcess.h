#pragma once

#include <string>
#include <vector>

namespace host_tests {

/// What a run of toolbox-host left.
struct Outcome {
    unsigned long exitCode;
    std::string data;   // standard output
    std::string notes;  // standard error
};

/// Runs the toolbox-host.exe that stands beside this program, with these arguments, and waits for
/// its end. Throws std::runtime_error when it cannot be started.
Outcome RunHost(const std::vector<std::string>& arguments);

/// A file beside this program.
std::string BesideProgram(const std::string& name);

}  // namespace host_tests
