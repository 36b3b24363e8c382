// Every setting of the file and what became of it, or would.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/configure/RunOnce.h"
#include "host/configure/Steps.h"
#include "host/reading/Settings.h"

namespace host::configure {

using reading::Setting;

enum class Fate {
    kChange,        ///< executed
    kAlreadySet,    ///< the module found nothing to do
    kFailed,        ///< executed, and it failed
    kWaits,         ///< its turn comes after the restart
    kNotAttempted,  ///< the run ended before it
    kLabel,         ///< tells the module something and changes nothing by itself
    kLeftAlone,     ///< the file says that it stays as it is
    kIgnored,       ///< has no effect
};

/// "already-set", for programs.
const char* Identifier(Fate fate);

struct Row {
    Setting setting;
    Fate fate = Fate::kNotAttempted;
    std::optional<std::uint32_t> index;  ///< of the adapter, where it is known
    std::string adapter;                 ///< its label
    /// Before the run; none where it asks for nothing or the adapter is not known.
    std::optional<std::vector<std::string>> current;
    std::vector<std::string> wanted;
    /// Of routes that were to be changed: the default route that the module leaves out of its
    /// comparison, and all that are there after the run.
    std::optional<std::string> defaultRoute;
    std::optional<std::vector<std::string>> left;
    std::vector<ChangingCall> calls;
    std::string reason;
};

/// One row a setting, in the settings' order. `next` are the rows of the pass after the restart,
/// where there is one: they tell what waits from what needs nothing. Null where nobody knows.
std::vector<Row> MakeRows(const std::vector<Setting>& settings, const Run& run, const Story& story,
                          const std::vector<Row>* next);

struct Counts {
    std::size_t changes = 0;
    std::size_t alreadySet = 0;
    std::size_t skipped = 0;  ///< by the module, although they differ
    std::size_t failed = 0;
    std::size_t waiting = 0;
    std::size_t notAttempted = 0;
    std::size_t leftAlone = 0;
    std::size_t ignored = 0;
};

/// Whether the module has passed over a setting that differs from what the machine has.
bool IsSkipped(const Row& row);

Counts CountRows(const std::vector<Row>& rows);

}  // namespace host::configure
