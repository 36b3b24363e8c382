#include "tests/common/proc/Children.h"

#include <algorithm>

namespace sys_tests {

std::string ChildProgram() {
    char path[MAX_PATH];
    const DWORD length = GetModuleFileNameA(nullptr, path, sizeof path);
    const std::string program(path, length);
    return program.substr(0, program.find_last_of('\\') + 1) + "child-program.exe";
}

std::string ChildCommand(const std::string& arguments) {
    return "\"" + ChildProgram() + "\" " + arguments;
}

std::int32_t Execute(const std::string& commandLine, bool wait, DWORD killTimeout,
                     proc::PipeCapture* capture) {
    logging::NullLogSink log;
    proc::CChildProcess child(log, killTimeout);
    return child.ExecuteCmd(nullptr, commandLine.c_str(), {}, {}, wait, SW_HIDE, capture);
}

StandardHandles::StandardHandles() {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        saved_[i] = GetStdHandle(kNames[i]);
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        files_[i] = CreateFileA(folder_.Path(std::to_string(i)).c_str(), GENERIC_WRITE,
                                FILE_SHARE_READ, &inheritable, CREATE_ALWAYS, 0, nullptr);
    }
    PutInPlace();
}

StandardHandles::~StandardHandles() {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        SetStdHandle(kNames[i], saved_[i]);
        CloseHandle(files_[i]);
    }
}

bool StandardHandles::AreInPlace() const {
    return std::equal(std::begin(kNames), std::end(kNames), std::begin(files_),
                      [](DWORD name, HANDLE file) { return GetStdHandle(name) == file; });
}

void StandardHandles::PutInPlace() {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        SetStdHandle(kNames[i], files_[i]);
    }
}

}  // namespace sys_tests
