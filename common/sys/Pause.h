#pragma once

#include <cstdint>

namespace sys {

/// Suspends the calling thread (the platform's Sleep).
void Pause(std::uint32_t milliseconds);

}  // namespace sys
