#pragma once

#include <memory>
#include <string>

namespace host {

namespace configure {
class PrivateFolder;
}

/// The configuration file that the command line names. What comes from standard input ("-") or a
/// pipe is read to its end and then stands in a private folder.
class InputFile {
public:
    /// Throws HostError (bad input) for what cannot be read, for a device, and for what is larger
    /// than any configuration: 16 MB.
    explicit InputFile(const std::string& named);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Where it stands.
    const std::string& Path() const noexcept { return path_; }
    /// As people call it.
    const std::string& Name() const noexcept { return name_; }
    /// Whether it stands where the command line says.
    bool IsFile() const noexcept { return folder_ == nullptr; }

private:
    std::string name_;
    std::string path_;
    std::unique_ptr<configure::PrivateFolder> folder_;
};

}  // namespace host
