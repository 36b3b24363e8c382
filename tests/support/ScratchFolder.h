#pragma once

#include <filesystem>
#include <string>

namespace support {

/// A new empty folder, the current one while the object lives; removed with all that is in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    /// The full path of a name in the folder; nothing need be there.
    std::string Path(const std::string& name) const { return (path_ / name).string(); }
    /// Writes the bytes and returns the name.
    std::string Write(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

void WriteFile(const std::filesystem::path& file, const std::string& bytes);
/// Fails the test when the file cannot be read.
std::string ReadFile(const std::filesystem::path& file);

}  // namespace support
