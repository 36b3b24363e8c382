// The outcome for people.
#pragma once

#include <string>

#include "host/Output.h"
#include "host/configure/Passes.h"

namespace host::configure {

struct ReportOptions {
    std::string file;     ///< as the user names it
    std::string machine;  ///< "the embedded machine", "this machine", a file
    bool plan = false;
    bool untilDone = false;
};

/// Prints every pass, what a restart brings and the module's replies as lines of data.
void PrintReport(const Outcome& outcome, const ReportOptions& options, Output& output);

}  // namespace host::configure
