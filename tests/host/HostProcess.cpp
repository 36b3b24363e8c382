#include "tests/host/HostProcess.h"

#include <windows.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "host/CommandLine.h"
#include "host/Module.h"
#include "host/Text.h"
#include "host/TextStream.h"
#include "tests/support/ScratchFolder.h"

namespace host_tests {

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

/// A file that a program prints to, and may inherit. No pipe: what the program starts of the
/// system's services keeps what it inherits, and the end of a pipe would never come.
class Printed {
public:
    explicit Printed(const std::string& name)
        : file_(std::filesystem::temp_directory_path() / (name + Own())) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        handle_.reset(CreateFileA(file_.string().c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  &inherited, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    HANDLE Get() const { return handle_.get(); }

    std::string Take() {
        handle_.reset();
        std::string text = support::ReadFile(file_);
        std::filesystem::remove(file_);
        return text;
    }

private:
    /// The file of a run that left a service behind cannot be made again.
    static std::string Own() {
        static int count = 0;
        return std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    }

    std::filesystem::path file_;
    Handle handle_;
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
    return std::filesystem::path(host::Module::DefaultPath()).replace_filename(name).string();
}

Outcome RunHost(const std::vector<std::string>& arguments) {
    std::vector<const char*> words = {"toolbox-host"};
    for (const std::string& argument : arguments) {
        words.push_back(argument.c_str());
    }
    Printed data("data-");
    Printed notes("notes-");
    int exitCode = 0;
    {
        host::TextStream dataStream(data.Get(), {});
        host::TextStream notesStream(notes.Get(), {});
        exitCode = host::Run(static_cast<int>(words.size()), words.data(), dataStream, notesStream);
    }
    return {static_cast<unsigned long>(exitCode), data.Take(), notes.Take()};
}

Outcome StartHost(const std::vector<std::string>& arguments) {
    std::string commandLine = Quoted(BesideProgram("toolbox-host.exe"));
    for (const std::string& argument : arguments) {
        commandLine += " " + Quoted(argument);
    }
    Printed data("data-");
    Printed notes("notes-");
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = data.Get();
    startup.hStdError = notes.Get();
    PROCESS_INFORMATION program{};
    // Two starts at once make Wine fail one of them now and then.
    bool started = false;
    for (int attempt = 0; !started && attempt < 5; ++attempt) {
        started = CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                 nullptr, &startup, &program) != FALSE;
        if (!started && GetLastError() != ERROR_INTERNAL_ERROR) {
            break;
        }
        if (!started) {
            std::puts("Wine failed to start toolbox-host");  // scripts/wine-test counts these
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
    return {exitCode, data.Take(), notes.Take()};
}

}  // namespace host_tests
