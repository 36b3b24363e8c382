#pragma once

#include <filesystem>
#include <string>

#include "common/lang/Handle.h"

namespace host::configure {

/// A new folder under the user's temporary folder, removed with all that is in it. What a program
/// that was ended from outside has left there is removed first.
class PrivateFolder {
public:
    /// Throws HostError when it cannot be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    /// In the system code page, without a separator at the end.
    const std::string& Path() const noexcept { return path_; }

    /// Copies the file here and returns the copy's path. The copy's name is one that no other file
    /// has, wherever it may be moved to. Throws HostError (bad input) when that fails.
    std::string CopyOf(const std::string& file) const;

    /// Removes the folders that this process has now, as far as their files are not in use: for a
    /// process that ends at once: none can be made any more. May be called by any thread.
    static void RemoveAll() noexcept;

private:
    std::string path_;
    lang::KernelHandle owner_;  // exists as long as the process does
};

/// The path of a text in the system code page: the library would take it for UTF-8.
std::filesystem::path ToPath(const std::string& text);

}  // namespace host::configure
