// What a fleet comes to: a row for each machine, and totals.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/Output.h"
#include "host/configure/Closing.h"
#include "host/configure/Plan.h"
#include "host/fleet/Fleet.h"

namespace host::fleet {

/// What is kept of a machine's plan.
struct Row {
    enum class Verdict {
        kRight,       ///< nothing to change
        kChanges,     ///< would be changed
        kFails,       ///< the plan would fail, now or after the restart
        kNotPlanned,  ///< there is no plan
    };

    std::string name;
    std::string file;
    std::string machine;
    int exitCode = 0;  ///< that "configure --plan" would have
    Verdict verdict = Verdict::kNotPlanned;
    configure::Counts counts;
    configure::RestartNeed restart = configure::RestartNeed::kNone;
    bool locksOut = false;
    std::vector<std::string> remarks;  ///< why it fails, who may be cut off, what check finds
};

/// "needed"
const char* RestartText(configure::RestartNeed need);

class Recap {
public:
    void Add(const Planned& planned);

    /// In the order in which they came.
    const std::vector<Row>& Rows() const noexcept { return rows_; }

    /// The worst of all: a failure before a bad file, that before changes. There is a row.
    int ExitCode() const;

    /// "5 machines: 2 to change (5 changes), 1 right already. No restart."
    std::string Totals() const;
    /// "Next: ...", which leads to the first of the worst.
    std::string NextStep() const;

    /// The table unless only the totals are wanted, and the totals. `folder` as the user names it.
    void Print(const std::string& folder, bool totalsOnly, Output& output) const;

private:
    void PrintTable(Output& output) const;
    std::size_t CountOf(Row::Verdict verdict) const;

    std::vector<Row> rows_;
};

}  // namespace host::fleet
