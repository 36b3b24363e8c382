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

/// Logs are searched for the messages as they are: the blank at the end of four of them belongs to
/// them.
CFileIOError FileError(const char* message, std::int32_t line) {
    return {message, line, static_cast<std::int32_t>(GetLastError())};
}

FileHandle OpenToAsk(const std::string& path, DWORD flags) {
    return FileHandle(CreateFileA(path.c_str(), 0,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, flags, nullptr));
}

/// Where the name led that the file was opened by; empty where the system does not tell.
std::wstring FinalPath(const FileHandle& file) {
    // By the volume's device: not every volume has a drive letter that the system can find again.
    constexpr DWORD kForm = FILE_NAME_NORMALIZED | VOLUME_NAME_NT;
    std::wstring path(GetFinalPathNameByHandleW(file.Get(), nullptr, 0, kForm), L'\0');
    const DWORD length =
        GetFinalPathNameByHandleW(file.Get(), path.data(), static_cast<DWORD>(path.size()), kForm);
    path.resize(length < path.size() ? length : 0);
    return path;
}

std::uint64_t NumberOf(const BY_HANDLE_FILE_INFORMATION& file) {
    return std::uint64_t{file.nFileIndexHigh} << 32U | file.nFileIndexLow;
}

/// What two paths are to have in common.
enum class Common { kFile, kName };

/// By the files' numbers, where the file system has them: a share of this machine shows a file
/// under a path of its own, so different final paths prove nothing. For a name they count only if
/// the file has no other one.
bool HaveInCommon(Common what, const FileHandle& left, const FileHandle& right) {
    BY_HANDLE_FILE_INFORMATION a{};
    BY_HANDLE_FILE_INFORMATION b{};
    if (GetFileInformationByHandle(left.Get(), &a) == 0 ||
        GetFileInformationByHandle(right.Get(), &b) == 0) {
        return false;
    }
    // A file system that has no numbers gives each of its files one of these.
    const bool hasNumber = NumberOf(a) != 0 && NumberOf(a) != ~std::uint64_t{0};
    return hasNumber && (what == Common::kFile || a.nNumberOfLinks == 1) &&
           NumberOf(a) == NumberOf(b) && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber;
}

/// The path from its root on; the path as it is where the system does not tell.
std::string FullPath(const std::string& path) {
    std::vector<char> full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr));
    const DWORD length =
        GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    return length != 0 && length < full.size() ? std::string(full.data(), length) : path;
}

bool HaveInCommon(Common what, const std::string& left, const std::string& right) {
    // Both stay open while they are compared: a number is a file's own only while the file is open.
    const FileHandle a = OpenToAsk(left, FILE_ATTRIBUTE_NORMAL);
    const FileHandle b = OpenToAsk(
        right, what == Common::kName ? FILE_FLAG_OPEN_REPARSE_POINT : FILE_ATTRIBUTE_NORMAL);
    if (!a || !b) {
        return NoCaseEqual(FullPath(left), FullPath(right));
    }
    const std::wstring leftLeads = FinalPath(a);
    const std::wstring rightLeads = FinalPath(b);
    const bool leadToOneName = leftLeads.empty() || rightLeads.empty()
                                   ? NoCaseEqual(FullPath(left), FullPath(right))
                                   : CompareStringOrdinal(leftLeads.c_str(), -1, rightLeads.c_str(),
                                                          -1, TRUE) == CSTR_EQUAL;
    return leadToOneName || HaveInCommon(what, a, b);
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
    return HaveInCommon(Common::kFile, left, right);
}

bool StandsAt(const std::string& path, const std::string& target) {
    // A link that stands there itself is there, wherever it leads.
    return NoCaseEqual(FullPath(path), FullPath(target)) ||
           HaveInCommon(Common::kName, path, target);
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
