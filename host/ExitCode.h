#pragma once

namespace host {

/// What the program's exit code says. Small numbers, because some callers see the low byte only.
enum ExitCode : int {
    kDone = 0,            ///< done, or nothing to do
    kFailure = 1,         ///< the module, the machine or a file failed
    kChangesPlanned = 2,  ///< a plan that would change something
    kRestartNeeded = 3,   ///< the rest of the configuration waits for a restart
    kWrongUsage = 64,     ///< the command line is wrong
    kBadInput = 65,       ///< a configuration file or machine file has errors
    kInterrupted = 130,   ///< Ctrl-C
    kReaderGone = 141,    ///< whoever read standard output has closed it
    kEnded = 143,         ///< ended from outside
};

}  // namespace host
