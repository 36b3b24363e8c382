#include "host/configure/PrivateFolder.h"

#include <windows.h>

#include <mutex>
#include <system_error>
#include <vector>

#include "common/util/FileUtils.h"
#include "common/util/Strings.h"
#include "host/HostError.h"
#include "host/Terminal.h"
#include "host/Text.h"
#include "machine/WideText.h"

namespace host::configure {

namespace {

constexpr const char* kStart = "toolbox-host-";

/// Held while a folder is made, and for good by a process that ends.
std::mutex making;

/// With its separator at the end.
std::string TemporaryFolder() {
    if (const std::string folder = RunFolder(); !folder.empty()) {
        return folder + "\\";
    }
    char folder[MAX_PATH + 1] = "";
    const DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length > MAX_PATH) {
        throw HostError("there is no temporary folder: " + DescribeSystemError(GetLastError()));
    }
    return folder;
}

/// The folders of this program, this process's and others'.
std::vector<std::string> FoldersIn(const std::string& parent, const std::string& start) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA((parent + start + "*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            names.emplace_back(found.cFileName);
        }
    } while (FindNextFileA(search, &found) != 0);
    FindClose(search);
    return names;
}

void Remove(const std::string& folder) noexcept {
    std::error_code ignored;
    std::filesystem::remove_all(ToPath(folder), ignored);
}

/// The name of an object of the system that exists as long as the folder's process.
std::string OwnerOf(const std::string& name) {
    return "Global\\" + name;
}

bool HasOwner(const std::string& name) {
    const lang::KernelHandle owner(OpenMutexA(SYNCHRONIZE, FALSE, OwnerOf(name).c_str()));
    // Another user's process has one that cannot be opened.
    return owner || GetLastError() != ERROR_FILE_NOT_FOUND;
}

}  // namespace

PrivateFolder::PrivateFolder() {
    const std::lock_guard lock(making);
    const std::string parent = TemporaryFolder();
    for (const std::string& name : FoldersIn(parent, kStart)) {
        if (!HasOwner(name)) {
            Remove(parent + name);
        }
    }
    // The process and a moving number: programs that run side by side get folders of their own.
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
        const std::string name =
            util::Format("%s%lu-%lx-%u", kStart, GetCurrentProcessId(),
                         static_cast<unsigned long>(GetTickCount64()), attempt);
        path_ = parent + name;
        // Before the folder: a folder without an owner is anybody's to remove.
        owner_.Reset(CreateMutexA(nullptr, FALSE, OwnerOf(name).c_str()));
        if (CreateDirectoryA(path_.c_str(), nullptr) != 0) {
            return;
        }
        if (GetLastError() != ERROR_ALREADY_EXISTS) {
            break;
        }
    }
    throw HostError("cannot make the folder " + path_ + ": " + DescribeSystemError(GetLastError()));
}

PrivateFolder::~PrivateFolder() {
    Remove(path_);
}

void PrivateFolder::RemoveAll() noexcept {
    try {
        making.lock();
        const std::string parent = TemporaryFolder();
        const std::string start = util::Format("%s%lu-", kStart, GetCurrentProcessId());
        // The other threads go on: what one of them is putting into its folder keeps it there.
        constexpr int kAttempts = 20;
        constexpr DWORD kPause = 10;  // milliseconds
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            const std::vector<std::string> names = FoldersIn(parent, start);
            if (names.empty()) {
                return;
            }
            for (const std::string& name : names) {
                Remove(parent + name);
            }
            Sleep(kPause);
        }
    } catch (const std::exception&) {
        // They stay: a later run removes them.
        return;
    }
}

std::string PrivateFolder::CopyOf(const std::string& file) const {
    const std::string name = util::Split(path_).fileName + "-" + util::Split(file).fileName;
    std::string copy = path_ + "\\" + name;
    if (CopyFileA(file.c_str(), copy.c_str(), TRUE) == 0) {
        const DWORD error = GetLastError();
        throw HostError("cannot read " + file + ": " + DescribeSystemError(error), kBadInput);
    }
    // A read-only original must not make a copy that cannot be put away.
    SetFileAttributesA(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    return copy;
}

std::filesystem::path ToPath(const std::string& text) {
    return std::filesystem::path(machine::Widen(text));
}

}  // namespace host::configure
