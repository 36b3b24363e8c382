#pragma once

namespace host {

/// From here on a crash of this program or of the module in it (an access violation, an abort, an
/// exception that nothing catches) ends with one line on standard error and the exit code 1: an
/// abort would otherwise end with 3, which means "restart needed" here.
void ReportCrashes();

}  // namespace host
