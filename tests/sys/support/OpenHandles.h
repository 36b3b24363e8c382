#pragma once

#include <cstddef>

namespace sys_tests {

/// The handles that this process has open, as the system counts them. GetProcessHandleCount would
/// be shorter, but Wine always answers 0.
std::size_t OpenHandles();

}  // namespace sys_tests
