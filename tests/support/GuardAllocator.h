#pragma once

namespace support {

/// While one lives, blocks that this thread allocates may stay to the end without being reported.
/// For libraries that keep what they make on first use. One at a time, in the checked build alone.
class LeaksAllowed {
public:
    LeaksAllowed() noexcept;
    ~LeaksAllowed();
    LeaksAllowed(const LeaksAllowed&) = delete;
    LeaksAllowed& operator=(const LeaksAllowed&) = delete;
};

}  // namespace support
