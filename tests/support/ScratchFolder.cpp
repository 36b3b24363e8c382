#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace support {

ScratchFolder::ScratchFolder() : before_(std::filesystem::current_path()) {
    // Other programs, and crashed ones before, have theirs beside it.
    for (int number = 1; path_.empty(); ++number) {
        const auto path = before_ / ("scratch-" + std::to_string(number));
        path_ = std::filesystem::create_directory(path) ? path : "";
    }
    std::filesystem::current_path(path_);
}

ScratchFolder::~ScratchFolder() {
    std::filesystem::current_path(before_);
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::Write(const std::string& name, const std::string& bytes) const {
    WriteFile(path_ / name, bytes);
    return name;
}

void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

std::string ReadFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    EXPECT_TRUE(in) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace support
