// Child processes: real ones, but for "route", whose place a program of this project takes.
#include <windows.h>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/HandleBook.h"
#include "machine/hooks/Hooks.h"

namespace machine {
namespace {

// The program that a command line starts with, quotes taken off.
std::string_view ProgramOf(std::string_view commandLine) {
    commandLine = Trim(commandLine);
    if (commandLine.starts_with('"')) {
        return commandLine.substr(1, commandLine.find('"', 1) - 1);
    }
    return commandLine.substr(0, commandLine.find_first_of(" \t"));
}

bool IsRoute(const char* application, const char* commandLine) {
    const std::string given = OrEmpty(application != nullptr ? application : commandLine);
    std::string_view name = application != nullptr ? std::string_view(given) : ProgramOf(given);
    name = name.substr(name.find_last_of("\\/:") + 1);
    return EqualNoCase(name, "route") || EqualNoCase(name, "route.exe");
}

struct ProcessRequest {
    LPCSTR application;
    LPSTR commandLine;
    LPSECURITY_ATTRIBUTES processSecurity;
    LPSECURITY_ATTRIBUTES threadSecurity;
    BOOL inheritHandles;
    DWORD flags;
    LPVOID environment;
    LPCSTR directory;
    LPSTARTUPINFOA startup;
    LPPROCESS_INFORMATION information;

    BOOL CreateOnce() const {
        return Real().CreateProcessA(application, commandLine, processSecurity, threadSecurity,
                                     inheritHandles, flags, environment, directory, startup,
                                     information);
    }

    /// Wine fails one of two starts at the same moment now and then; the next attempt succeeds.
    BOOL Create() const {
        constexpr int kAttempts = 5;
        BOOL result = CreateOnce();
        for (int attempt = 1; result == FALSE && attempt < kAttempts; ++attempt) {
            if (GetLastError() != ERROR_INTERNAL_ERROR) {
                break;
            }
            result = CreateOnce();
        }
        return result;
    }
};

// The system's own route program is never started, on a real Windows machine either.
BOOL StartRoute(Call& call, ProcessRequest request) {
    const std::string program = call->routeProgram.string();
    if (Real().GetFileAttributesA(program.c_str()) == INVALID_FILE_ATTRIBUTES) {
        call.Unexpected("the program that stands for route is missing: " + program);
        return call.Boolean(false, ERROR_FILE_NOT_FOUND);
    }
    if ((request.flags & CREATE_UNICODE_ENVIRONMENT) != 0) {
        call.Unexpected("a UTF-16 environment for route");
        return call.Boolean(false, ERROR_INVALID_PARAMETER);
    }
    RouteChild child(call->state, call->faults.OnOutcome(
                                      "route", {{"command line", OrEmpty(request.commandLine)}}));
    std::string environment = child.Environment(static_cast<const char*>(request.environment));
    request.application = program.c_str();
    request.environment = environment.data();
    const BOOL result = call.RealBoolean(request.Create());
    if (result != FALSE) {
        child.Started(request.information->hProcess);
        call->routeChildren.push_back(std::move(child));
    }
    return result;
}

BOOL ServeCreateProcessA(Core& core, LPCSTR application, LPSTR commandLine,
                         LPSECURITY_ATTRIBUTES processSecurity,
                         LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles, DWORD flags,
                         LPVOID environment, LPCSTR directory, LPSTARTUPINFOA startup,
                         LPPROCESS_INFORMATION information) {
    const ProcessRequest request{application,    commandLine, processSecurity, threadSecurity,
                                 inheritHandles, flags,       environment,     directory,
                                 startup,        information};
    Call call(core, "CreateProcessA",
              {{"application", OrEmpty(application)}, {"command line", OrEmpty(commandLine)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result = IsRoute(application, commandLine) ? StartRoute(call, request)
                                                          : call.RealBoolean(request.Create());
    if (result != FALSE) {
        HandOutHandle(call, processHandle, information->hProcess, OrEmpty(commandLine));
        HandOutHandle(call, threadHandle, information->hThread, OrEmpty(commandLine));
    }
    return result;
}

DWORD ServeWaitForSingleObject(Core& core, HANDLE handle, DWORD milliseconds) {
    Call call(core, "WaitForSingleObject", {{"milliseconds", std::to_string(milliseconds)}});
    if (const auto fault = call.Fault()) {
        call.Note("WAIT_FAILED", true, *fault);
        return WAIT_FAILED;
    }
    const DWORD result =
        call.Unlocked([&] { return Real().WaitForSingleObject(handle, milliseconds); });
    call->CollectRouteChildren();
    const bool failed = result == WAIT_FAILED;
    call.Note(result == WAIT_OBJECT_0  ? "WAIT_OBJECT_0"
              : result == WAIT_TIMEOUT ? "WAIT_TIMEOUT"
                                       : Hex(result),
              failed, call.RealError());
    return result;
}

BOOL ServeGetExitCodeProcess(Core& core, HANDLE process, LPDWORD code) {
    Call call(core, "GetExitCodeProcess");
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    const BOOL result = call.RealBoolean(Real().GetExitCodeProcess(process, code));
    if (result != FALSE) {
        call.AddArgument("code", std::to_string(*code));
        call.SetOutcome(*code);
    }
    return result;
}

BOOL ServeTerminateProcess(Core& core, HANDLE process, UINT code) {
    Call call(core, "TerminateProcess", {{"code", std::to_string(code)}});
    if (const auto fault = call.Fault()) {
        return call.Boolean(false, *fault);
    }
    return call.RealBoolean(Real().TerminateProcess(process, code));
}

}  // namespace

void AddProcessHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeCreateProcessA>("CreateProcessA"));
    hooks.push_back(MakeHook<&ServeGetExitCodeProcess, OnHandedOutHandle>("GetExitCodeProcess"));
    hooks.push_back(MakeHook<&ServeTerminateProcess, OnHandedOutHandle>("TerminateProcess"));
    hooks.push_back(MakeHook<&ServeWaitForSingleObject, OnHandedOutHandle>("WaitForSingleObject"));
}

}  // namespace machine
