#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "common/proc/ChildProcess.h"
#include "tests/support/ScratchFolder.h"

namespace sys_tests {

/// A command line that starts the tests' own console program, which lies beside this one.
std::string ChildCommand(const std::string& arguments);
std::string ChildProgram();

/// Runs the command line without a window.
std::int32_t Execute(const std::string& commandLine, bool wait = true, DWORD killTimeout = INFINITE,
                     proc::PipeCapture* capture = nullptr);

/// The standard handles of this process, pointed at files for the life of the object.
class StandardHandles {
public:
    StandardHandles();
    ~StandardHandles();
    StandardHandles(const StandardHandles&) = delete;
    StandardHandles& operator=(const StandardHandles&) = delete;

    /// Whether they are the files still.
    bool AreInPlace() const;
    void PutInPlace();

    /// What was written to them.
    std::string Output() const { return support::ReadFile(folder_.Path("1")); }
    std::string Error() const { return support::ReadFile(folder_.Path("2")); }

private:
    static constexpr DWORD kNames[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    support::ScratchFolder folder_;
    HANDLE saved_[3]{};
    HANDLE files_[3]{};
};

}  // namespace sys_tests
