#pragma once

#include "host/configure/Passes.h"
#include "host/configure/Report.h"
#include "host/report/Html.h"

namespace host::report {

/// Runs and restarts in order, those to come included.
void WriteTimeline(Html& html, const configure::Outcome& outcome,
                   const configure::ReportOptions& options);

}  // namespace host::report
