#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace sys_tests {

/// A new folder under the folder that the test program runs in, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder() {
        static int made = 0;
        path_ = "scratch-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++made);
        std::filesystem::create_directory(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// The path of a name in the folder; nothing need be there.
    std::string Path(std::string_view name) const { return path_ + "\\" + std::string(name); }
    std::string AddFile(std::string_view name, std::string_view content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

private:
    std::string path_;
};

/// The file's bytes; throws std::runtime_error when it cannot be read.
inline std::string ReadFileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace sys_tests
