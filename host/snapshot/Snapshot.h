#pragma once

#include <string>
#include <vector>

#include "machine/State.h"

namespace host::snapshot {

/// A machine as the module sees it.
struct Snapshot {
    machine::State state;
    /// What could not be seen, a sentence each: the adapter, the property or the registry key, and
    /// the call that failed. Texts are in the system code page.
    std::vector<std::string> notes;
};

/// Reads the machine that this program runs on through the module's own queries. Never fails: what
/// cannot be read is left out and noted.
///
/// It sees the adapters with IP and all of their lists, the hardware of PCI adapters without, and
/// nothing of a directory but the unit that holds the computer's object.
Snapshot TakeSnapshot();

}  // namespace host::snapshot
