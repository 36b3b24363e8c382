// The order is what this source is for.
// clang-format off
#include "common/util/FileUtils.h"
#include <windows.h>
// clang-format on

#if !defined(MoveFile) || !defined(DeleteFile)
#error "<windows.h> defines both names"
#endif

namespace sys_tests {

void MoveThroughMacros(const std::string& source, const std::string& destination) {
    util::MoveFile(source, destination);
}

void DeleteThroughMacros(const std::string& path) {
    util::DeleteFile(path);
}

}  // namespace sys_tests
