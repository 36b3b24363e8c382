#include "host/configure/PrivateFolder.h"

#include <windows.h>

#include <system_error>

#include "common/util/FileUtils.h"
#include "common/util/Strings.h"
#include "host/HostError.h"
#include "host/Text.h"
#include "machine/WideText.h"

namespace host::configure {

PrivateFolder::PrivateFolder() {
    char folder[MAX_PATH + 1] = "";
    const DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length > MAX_PATH) {
        throw HostError("there is no temporary folder: " + DescribeSystemError(GetLastError()));
    }
    // The process and a moving number: programs that run side by side get folders of their own.
    for (unsigned attempt = 0; attempt < 1000; ++attempt) {
        path_ = util::Format("%stoolbox-host-%lu-%lx-%u", folder, GetCurrentProcessId(),
                             static_cast<unsigned long>(GetTickCount64()), attempt);
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
    std::error_code ignored;
    std::filesystem::remove_all(ToPath(path_), ignored);
}

std::string PrivateFolder::CopyOf(const std::string& file) const {
    const std::string name = util::Split(path_).fileName + "-" + util::Split(file).fileName;
    std::string copy = path_ + "\\" + name;
    if (CopyFileA(file.c_str(), copy.c_str(), TRUE) == 0) {
        const DWORD error = GetLastError();
        throw HostError(
            "cannot read the configuration file " + file + ": " + DescribeSystemError(error),
            kBadInput);
    }
    // A read-only original must not make a copy that cannot be put away.
    SetFileAttributesA(copy.c_str(), FILE_ATTRIBUTE_NORMAL);
    return copy;
}

std::filesystem::path ToPath(const std::string& text) {
    return std::filesystem::path(machine::Widen(text));
}

}  // namespace host::configure
