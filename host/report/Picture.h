// The pictures of a report: drawings in the page itself, each with its title and its description.
#pragma once

#include <string>
#include <vector>

#include "host/report/Comparison.h"
#include "host/report/Html.h"

namespace host::report {

/// Draws every part before and after; one that does not change is drawn once. `after` says when
/// that is: "After the run".
void DrawParts(Html& html, const std::vector<Part>& parts, const std::string& after);

}  // namespace host::report
