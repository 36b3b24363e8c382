// The report of a plan or a run that people attach to a change: one page that stands by itself.
#pragma once

#include <string>

#include "host/configure/Passes.h"
#include "host/configure/Report.h"
#include "host/report/Html.h"

namespace host::report {

/// What a report is about.
struct Subject {
    const configure::Outcome& outcome;
    const configure::ReportOptions& options;
    int exitCode = 0;           ///< of the program, which the verdict says in words
    std::string fileDigest;     ///< of the configuration file as it was read
    std::string machineDigest;  ///< of the machine file; empty where the machine is no file
    int level = 2;              ///< of the headings: there is another one above them
};

/// Everything that a report says of one machine.
void WritePlan(Html& html, const Subject& subject);

/// What made the page, and when. `version` is the module's.
void WriteImprint(Html& html, const std::string& version);

/// The whole page.
std::string MakePlanPage(const Subject& subject, const std::string& version);

}  // namespace host::report
