#include "tests/host/HostProcess.h"

#include <windows.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "host/Module.h"
#include "host/Text.h"

namespace host_tests {

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

/// Takes what a program prints. A file and no pipe: what the program starts of the system's
/// services keeps what it inherits, and the end of a pipe would never come.
class Capture {
public:
    Capture() {
        char folder[MAX_PATH + 1] = "";
        GetTempPathA(sizeof folder, folder);
        GetTempFileNameA(folder, "out", 0, name_);
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        file_.reset(CreateFileA(name_, GENERIC_WRITE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    ~Capture() {
        file_.reset();
        DeleteFileA(name_);
    }
    Capture(const Capture&) = delete;
    Capture& operator=(const Capture&) = delete;

    void* File() const { return file_.get(); }
    std::string Text() const {
        std::ifstream file(name_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    char name_[MAX_PATH + 1] = "";
    Handle file_;
};

/// As the C run-time library takes a command line apart.
std::string Quoted(const std::string& argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0;
    for (const char character : argument) {
        if (character == '"') {
            quoted.append(backslashes + 1, '\\');
        }
        backslashes = character == '\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, '\\') + '"';
}

}  // namespace

std::string BesideProgram(const std::string& name) {
    const std::string module = host::Module::DefaultPath();
    return module.substr(0, module.find_last_of("\\/") + 1) + name;
}

Outcome RunHost(const std::vector<std::string>& arguments) {
    std::string commandLine = Quoted(BesideProgram("toolbox-host.exe"));
    for (const std::string& argument : arguments) {
        commandLine += " " + Quoted(argument);
    }
    const Capture data;
    const Capture notes;
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = data.File();
    startup.hStdError = notes.File();
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &started)) {
        throw std::runtime_error("cannot start " + commandLine + ": " +
                                 host::DescribeSystemError(GetLastError()));
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    Outcome outcome{0, data.Text(), notes.Text()};
    GetExitCodeProcess(process.get(), &outcome.exitCode);
    return outcome;
}

}  // namespace host_tests
