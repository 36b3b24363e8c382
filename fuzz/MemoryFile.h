#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/Require.h"

/// A file in memory with these bytes, for code that opens files by their path.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view bytes) : descriptor_(memfd_create("fuzz", 0)) {
        REQUIRE(descriptor_ >= 0);
        REQUIRE(write(descriptor_, bytes.data(), bytes.size()) ==
                static_cast<ssize_t>(bytes.size()));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};
