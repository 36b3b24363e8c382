// The end of a report: what it comes to, what failed and why, what a restart brings, what to do
// next.
#pragma once

#include <string>
#include <vector>

#include "host/configure/Passes.h"
#include "host/configure/Report.h"

namespace host::configure {

/// "Plan: 4 changes, 1 left alone. No restart."; with what fails, where something does.
std::string SummaryText(const Outcome& outcome, const Pass& pass, const ReportOptions& options);

/// What a run comes to as to restarts.
enum class RestartNeed {
    kNone,
    kNeeded,       ///< the module asks for one
    kNotReported,  ///< the module stopped for one and keeps quiet about it
    kPending,      ///< something waits for one that nobody asks for
};
RestartNeed RestartNeedOf(const Pass& pass);

/// Whether the run after the restart would fail.
bool FailsAfterRestart(const Outcome& outcome);

/// "Would fail: Domain (:5): the account's name or password is wrong (1326)"
std::string FailurePhrase(const Pass& pass, const char* verb);

/// What waits for the restart in the machine itself: "computer name PC7".
std::vector<std::string> RestartEffects(const machine::State& machine);

/// What the restart makes effective and what comes after it, in lines for people; none when nothing
/// has to do with a restart.
std::vector<std::string> RestartLines(const Outcome& outcome);

/// What failed: "SetDns (adapter index 7)".
std::string WhatFailed(const Pass& pass);

/// What shows every finding: "toolbox-host check site.ini --machine office.json"
std::string CheckCommandLine(const ReportOptions& options);

/// "Next: ..."
std::string NextStep(const Outcome& outcome, const ReportOptions& options);

}  // namespace host::configure
