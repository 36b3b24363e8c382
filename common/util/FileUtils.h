#pragma once

#include <string>

// <windows.h> defines these names as macros. Included before it or after it, this header declares
// the functions under both spellings, so that callers need not care.
#undef MoveFile
#undef DeleteFile

namespace util {

/// A path counts as an existing file when its attributes can be read and it is no directory.
/// MoveFile and DeleteFile go by the same rule; their failures are CFileIOError with the last
/// Windows error.
bool FileExists(const std::string& path);

/// Never replaces: an existing `destination` is an error, found before `source` is looked at.
void MoveFile(const std::string& source, const std::string& destination);
inline void MoveFileA(const std::string& source, const std::string& destination) {
    MoveFile(source, destination);
}

void DeleteFile(const std::string& path);
inline void DeleteFileA(const std::string& path) {
    DeleteFile(path);
}

/// Whether both paths lead to one file, by whatever names and however they are spelled. Where the
/// system does not say, the full paths are compared, without case.
bool IsSameFile(const std::string& left, const std::string& right);

/// Whether the file that `path` leads to stands under the name `target` already: the same, but a
/// link at `target`, hard or symbolic, is another name of the file and not this one, unless `path`
/// names that very link.
bool StandsAt(const std::string& path, const std::string& target);

/// The path of the host process's executable, as the system reports it in at most 260 characters.
std::string ExecutablePath();

/// A path cut at its last "\" or "/".
struct SplitPath {
    std::string directory;  // without the separator; empty where there is none
    std::string fileName;
};
SplitPath Split(const std::string& path);

}  // namespace util
