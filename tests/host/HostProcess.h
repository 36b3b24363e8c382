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

/// What toolbox-host makes of these arguments, run inside this process: all of it but what its
/// entry sets up. A process for each run would take most of a test's time.
Outcome RunHost(const std::vector<std::string>& arguments);

/// Runs the toolbox-host.exe that stands beside this program, with these arguments, and waits for
/// its end. Throws std::runtime_error when it cannot be started.
Outcome StartHost(const std::vector<std::string>& arguments);

/// A file beside this program.
std::string BesideProgram(const std::string& name);

}  // namespace host_tests
