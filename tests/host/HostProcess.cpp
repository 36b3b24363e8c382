#include "tests/host/HostProcess.h"

#include <windows.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

#include "host/Module.h"
#include "host/Text.h"

namespace host_tests {

namespace {

struct HandleCloser {
    void operator()(void* handle) const noexcept { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

struct Pipe {
    Handle read;
    Handle write;
};

Pipe MakePipe() {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &inherited, 0)) {
        throw std::runtime_error("CreatePipe failed");
    }
    SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
    return {Handle(read), Handle(write)};
}

std::string ReadAll(void* pipe) {
    std::string text;
    char buffer[4096];
    DWORD count = 0;
    while (ReadFile(pipe, buffer, sizeof buffer, &count, nullptr) && count > 0) {
        text.append(buffer, count);
    }
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
    const std::string module = host::Module::DefaultPath();
    return module.substr(0, module.find_last_of("\\/") + 1) + name;
}

Outcome RunHost(const std::vector<std::string>& arguments) {
    std::string commandLine = Quoted(BesideProgram("toolbox-host.exe"));
    for (const std::string& argument : arguments) {
        commandLine += " " + Quoted(argument);
    }
    Pipe data = MakePipe();
    Pipe notes = MakePipe();
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = data.write.get();
    startup.hStdError = notes.write.get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                        &startup, &started)) {
        throw std::runtime_error("cannot start " + commandLine + ": " +
                                 host::DescribeSystemError(GetLastError()));
    }
    const Handle process(started.hProcess);
    const Handle thread(started.hThread);
    data.write.reset();
    notes.write.reset();

    Outcome outcome{};
    std::thread notesReader([&] { outcome.notes = ReadAll(notes.read.get()); });
    outcome.data = ReadAll(data.read.get());
    notesReader.join();
    WaitForSingleObject(process.get(), INFINITE);
    GetExitCodeProcess(process.get(), &outcome.exitCode);
    return outcome;
}

}  // namespace host_tests
