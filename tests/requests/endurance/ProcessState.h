#pragma once

#include <cstddef>

namespace endurance {

/// What a process must not pile up.
struct ProcessState {
    std::size_t handles;
    std::size_t modules;
    std::size_t threads;
    std::size_t largeBlocks;  ///< of memory, in any heap: what a library takes for its whole life
};

/// Counts for this process. The handles come from the system's handle table, for
/// GetProcessHandleCount always answers 0 under Wine.
ProcessState ReadProcessState();

}  // namespace endurance
