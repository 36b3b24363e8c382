#include "host/Terminal.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string_view>

#include "common/lang/Handle.h"

namespace host {

namespace {

using lang::FileHandle;

std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

/// The path of a file in the folder of "./run", whatever characters that has; empty without the
/// folder. Needs no memory: a program that crashes asks for it too.
struct PathInRunFolder {
    explicit PathInRunFolder(const wchar_t* name) {
        constexpr DWORD kRoom = MAX_PATH - 16;
        const DWORD length = GetEnvironmentVariableW(L"TOOLBOX_RUN", text, kRoom);
        if (length == 0 || length >= kRoom) {
            *text = L'\0';
        } else {
            std::swprintf(text + length, MAX_PATH - length, L"\\%ls", name);
        }
    }

    explicit operator bool() const noexcept { return *text != L'\0'; }

    wchar_t text[MAX_PATH] = L"";
};

bool IsUnderWine() {
    return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr;
}

/// A console of Windows that obeys control sequences; those before Windows 10 do not.
Destination OfConsole(HANDLE console) {
    Destination destination;
    DWORD mode = 0;
    constexpr DWORD kVirtualTerminal = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
    destination.isTerminal = GetConsoleMode(console, &mode) != 0 && !IsUnderWine() &&
                             SetConsoleMode(console, mode | kVirtualTerminal) != 0;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (GetConsoleScreenBufferInfo(console, &screen) != 0) {
        destination.columns =
            static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left) + 1;
    }
    return destination;
}

Destination WhereItLeads(DWORD standardHandle, std::string_view name) {
    Destination destination;
    if (RunFolder().empty()) {
        destination = OfConsole(GetStdHandle(standardHandle));
    } else {
        destination.isTerminal = Variable("TOOLBOX_TERMINAL").find(name) != std::string_view::npos;
        const std::string_view columns = Variable("TOOLBOX_COLUMNS");
        std::size_t number = 0;
        std::from_chars(columns.data(), columns.data() + columns.size(), number);
        destination.columns = number == 0 ? destination.columns : number;
    }
    destination.isTerminal = destination.isTerminal && Variable("TERM") != "dumb";
    return destination;
}

}  // namespace

void TakeStandardError() {
    const PathInRunFolder pipe(L"notes");
    if (!pipe) {
        return;
    }
    FileHandle notes(CreateFileW(pipe.text, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                 nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    const int opened =
        notes ? _open_osfhandle(reinterpret_cast<std::intptr_t>(notes.Release()), _O_BINARY)
              : _fileno(stdout);
    _dup2(opened, _fileno(stderr));
    auto* const taken = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stderr)));
    SetStdHandle(STD_ERROR_HANDLE, taken);
    // A child that outlives this process would keep the pipe open.
    SetHandleInformation(taken, HANDLE_FLAG_INHERIT, 0);
}

Destination WhereOutputLeads() {
    return WhereItLeads(STD_OUTPUT_HANDLE, "data");
}

Destination WhereErrorsLead() {
    return WhereItLeads(STD_ERROR_HANDLE, "notes");
}

std::string ProgramName() {
    const std::string_view name = Variable("TOOLBOX_NAME");
    return std::string(name.empty() ? "toolbox-host" : name);
}

std::string RunFolder() {
    return std::string(Variable("TOOLBOX_RUN"));
}

void TellTheEnd() {
    if (const PathInRunFolder mark(L"ended"); mark) {
        const FileHandle made(CreateFileW(mark.text, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
    }
}

}  // namespace host
