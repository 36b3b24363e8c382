#include <windows.h>

#include <cstdint>
#include <vector>

#include "common/err/GeneralError.h"
#include "common/lang/Handle.h"
#include "common/util/FileUtils.h"
#include "common/util/Strings.h"

namespace util {

namespace {

using lang::FileHandle;

CFileIOError FileError(const char* message, std::int32_t line) {
    return {message, line, static_cast<std::int32_t>(GetLastError())};
}

FileHandle OpenForIdentity(const std::string& path) {
    return FileHandle(CreateFileA(path.c_str(), 0,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

/// The path from its root on; the path as it is where the system does not tell.
std::string FullPath(const std::string& path) {
    std::vector<char> full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr));
    const DWORD length =
        GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    return length != 0 && length < full.size() ? std::string(full.data(), length) : path;
}

}  // namespace

bool FileExists(const std::string& path) {
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

void MoveFile(const std::string& source, const std::string& destination) {
    if (FileExists(destination)) {
        throw FileError("Destination file exists ", 97);
    }
    if (!FileExists(source)) {
        throw FileError("Source file does not exist ", 100);
    }
    if (::MoveFileA(source.c_str(), destination.c_str()) == 0) {
        throw FileError("File Move Failed ", 104);
    }
}

void DeleteFile(const std::string& path) {
    if (!FileExists(path)) {
        throw FileError("Delete failed - target does not exist", 136);
    }
    if (::DeleteFileA(path.c_str()) == 0) {
        throw FileError("Delete failed ", 139);
    }
}

bool IsSameFile(const std::string& left, const std::string& right) {
    // Both stay open while they are compared: an index is a file's own only while the file is open.
    const FileHandle a = OpenForIdentity(left);
    const FileHandle b = OpenForIdentity(right);
    BY_HANDLE_FILE_INFORMATION leftIdentity{};
    BY_HANDLE_FILE_INFORMATION rightIdentity{};
    if (a && b && GetFileInformationByHandle(a.Get(), &leftIdentity) != 0 &&
        GetFileInformationByHandle(b.Get(), &rightIdentity) != 0) {
        return leftIdentity.dwVolumeSerialNumber == rightIdentity.dwVolumeSerialNumber &&
               leftIdentity.nFileIndexHigh == rightIdentity.nFileIndexHigh &&
               leftIdentity.nFileIndexLow == rightIdentity.nFileIndexLow;
    }
    return NoCaseEqual(FullPath(left), FullPath(right));
}

std::string ExecutablePath() {
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    return std::string(path, length);
}

SplitPath Split(const std::string& path) {
    std::size_t separator = std::string::npos;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (IsDBCSLeadByte(static_cast<BYTE>(path[i])) != 0) {
            ++i;  // in some code pages a character's second byte looks like a backslash
        } else if (path[i] == '\\' || path[i] == '/') {
            separator = i;
        }
    }
    if (separator == std::string::npos) {
        return {{}, path};
    }
    return {path.substr(0, separator), path.substr(separator + 1)};
}

}  // namespace util
