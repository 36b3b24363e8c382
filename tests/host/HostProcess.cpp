#include "tests/host/HostProcess.h"

#include <windows.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <utility>

#include "host/Module.h"
#include "host/Text.h"
#include "tests/support/ScratchFolder.h"

namespace host_tests {

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

/// A file that a program inherits to print to. No pipe: what the program starts of the system's
/// services keeps what it inherits, and the end of a pipe would never come.
Handle OpenInherited(const std::filesystem::path& file) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return Handle(CreateFileA(file.string().c_str(), GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::string Take(Handle opened, const std::filesystem::path& file) {
    opened.reset();
    const std::string text = support::ReadFile(file);
    std::filesystem::remove(file);
    return text;
}

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
    return std::filesystem::path(host::Module::DefaultPath()).replace_filename(name).string();
}

Outcome RunHost(const std::vector<std::string>& arguments) {
    std::string commandLine = Quoted(BesideProgram("toolbox-host.exe"));
    for (const std::string& argument : arguments) {
        commandLine += " " + Quoted(argument);
    }
    const auto files = std::filesystem::temp_directory_path();
    // The file of a run that left a service behind cannot be made again.
    static int count = 0;
    const std::string own = std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    Handle data = OpenInherited(files / ("data-" + own));
    Handle notes = OpenInherited(files / ("notes-" + own));
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = data.get();
    startup.hStdError = notes.get();
    PROCESS_INFORMATION program{};
    // Two starts at once make Wine fail one of them now and then.
    bool started = false;
    for (int attempt = 0; !started && attempt < 5; ++attempt) {
        started = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                 nullptr, &startup, &program) != FALSE;
        if (!started && GetLastError() != ERROR_INTERNAL_ERROR) {
            break;
        }
    }
    if (!started) {
        throw std::runtime_error("cannot start " + commandLine + ": " +
                                 host::DescribeSystemError(GetLastError()));
    }
    const Handle process(program.hProcess);
    const Handle thread(program.hThread);
    WaitForSingleObject(process.get(), INFINITE);
    unsigned long exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return {exitCode, Take(std::move(data), files / ("data-" + own)),
            Take(std::move(notes), files / ("notes-" + own))};
}

}  // namespace host_tests
