#include "tests/sys/support/ScratchFolder.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sys_tests {

ScratchFolder::ScratchFolder() {
    static int made = 0;
    path_ = "scratch-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++made);
    std::filesystem::create_directory(path_);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string ScratchFolder::Path(std::string_view name) const {
    return path_ + "\\" + std::string(name);
}

std::string ScratchFolder::AddFile(std::string_view name, std::string_view content) const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
}

std::string ScratchFolder::AddFolder(std::string_view name) const {
    std::filesystem::create_directory(Path(name));
    return Path(name);
}

std::string ReadFileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace sys_tests
