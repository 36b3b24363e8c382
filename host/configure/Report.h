// The outcome for people.
#pragma once

#include <string>
#include <vector>

#include "host/Output.h"
#include "host/check/FileCheck.h"
#include "host/configure/Passes.h"

namespace host::configure {

/// How much a report tells.
enum class Extent { kSummary, kUsual, kDetails };

struct ReportOptions {
    std::string file;            ///< as the user names it
    std::string machine;         ///< "the embedded machine", "this machine", a file
    std::string fileWord;        ///< the same two in a command line
    std::string machineOptions;  // each behind a blank
    bool onThisMachine = false;
    bool plan = false;
    bool untilDone = false;
    Extent extent = Extent::kUsual;
    const check::CheckedFile& checked;
    std::vector<std::string> warnings;
    std::vector<std::string> wayBack;  ///< what undoes it, and what it does not bring back
};

/// Prints every pass, what a restart brings and what to do next as lines of data.
void PrintReport(const Outcome& outcome, const ReportOptions& options, Output& output);

}  // namespace host::configure
