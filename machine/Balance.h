// What config.dll keeps of what it was handed, told apart from leaks.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "machine/Ledger.h"
#include "machine/Trace.h"

namespace machine {

struct Balance {
    /// What the module keeps on purpose (docs/architecture.md), by name: "child's end of the output
    /// pipe" and "child's end of the input pipe" of each child that was waited for, and "policy
    /// without workstation information".
    std::map<std::string, std::size_t> kept;
    /// Everything else that is outstanding or was misused, a line each.
    std::vector<std::string> leaks;
};

/// `calls` are all calls that the ledger has seen.
Balance Weigh(const Ledger& ledger, std::span<const TraceEntry> calls);

}  // namespace machine
