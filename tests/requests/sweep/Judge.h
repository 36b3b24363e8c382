// Whether a request that met failing platform calls ended as it may.
#pragma once

#include <string>
#include <vector>

#include "machine/State.h"
#include "tests/requests/harness/ModuleRun.h"

namespace sweep {

struct Verdict {
    std::string answer;                   ///< kind of the answer: "Success", "Failure", ...
    bool harmless = false;                ///< as if nothing had failed
    bool passedOver = false;              ///< only calls failed that the module passes over
    std::vector<std::string> complaints;  ///< what must not be
};

/// What a request came to, and what it comes to when nothing fails.
struct Ending {
    requests::RunResult run;
    machine::State machine;
    std::string file;  ///< as PresentedFile::WhereIsIt says
};

Verdict Judge(const Ending& ending, const Ending& clean);

}  // namespace sweep
