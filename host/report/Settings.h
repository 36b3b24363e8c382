#pragma once

#include "host/configure/Passes.h"
#include "host/report/Html.h"

namespace host::report {

/// What became of each setting, section by section. Of a later pass the news
/// alone. `level` is that of the headings.
void WriteSettings(Html& html, const configure::Pass& pass, bool isFirst, int level);

}  // namespace host::report
