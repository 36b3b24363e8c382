// Counts what COM's allocator gave out and did not get back: BSTRs, VARIANT contents, SAFEARRAYs.
#pragma once

#include <cstddef>

namespace machine {

/// Watches every allocation of the process's COM allocator from its construction on. The first
/// balance of a process begins the watch, which never ends, and switches the cache of freed BSTRs
/// off; it throws std::runtime_error when somebody else watches.
class ComMemoryBalance {
public:
    ComMemoryBalance();

    /// Blocks allocated since construction and not freed yet.
    std::size_t OutstandingBlocks() const;

private:
    std::size_t since_;
};

}  // namespace machine
