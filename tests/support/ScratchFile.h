#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "tests/support/ScratchFolder.h"

namespace support {

/// A file of a test with exactly these bytes, in the folder the test program runs in; deleted with
/// the object.
class ScratchFile {
public:
    explicit ScratchFile(std::string_view bytes, const std::string& name = "scratch.ini")
        : path_(name) {
        WriteFile(path_, std::string(bytes));
    }
    ~ScratchFile() { std::remove(path_.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

}  // namespace support
