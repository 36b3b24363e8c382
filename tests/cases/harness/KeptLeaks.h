// The resources that the module lets go of on purpose, told apart from real leaks.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "machine/Ledger.h"
#include "machine/Trace.h"

namespace e2e {

/// What of a ledger is meant to be there after the calls were made, and what is not.
struct Balance {
    /// By name: "child's end of the output pipe" and "child's end of the input pipe" (of a child
    /// that was waited for), "policy without workstation information" (the workstation service gave
    /// no buffer).
    std::map<std::string, std::size_t> kept;
    /// Everything else that is outstanding or was misused, a line each.
    std::vector<std::string> leaks;
};

/// `calls` are all calls that the ledger has seen.
Balance Weigh(const machine::Ledger& ledger, std::span<const machine::TraceEntry> calls);

}  // namespace e2e
