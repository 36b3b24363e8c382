#pragma once

#include <string>
#include <string_view>

namespace sys_tests {

/// A new folder under the folder that the test program runs in, removed with everything in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// The path of a name in the folder; nothing need be there.
    std::string Path(std::string_view name) const;
    std::string AddFile(std::string_view name, std::string_view content) const;
    std::string AddFolder(std::string_view name) const;

private:
    std::string path_;
};

/// The file's bytes; throws std::runtime_error when it cannot be read.
std::string ReadFileContent(const std::string& path);

}  // namespace sys_tests
