#pragma once

#include <cstdint>

namespace support {

/// How many points a test tries of more than it could: `few` in the short form of ./check, `many`
/// in the full one, a twentieth of these under the guard allocator, which takes its time, and `all`
/// for scripts/sweep. The environment says which by TOOLBOX_SAMPLE: nothing, "full" or "all".
std::uint64_t SampleOf(std::uint64_t few, std::uint64_t many, std::uint64_t all);

}  // namespace support
