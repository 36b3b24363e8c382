// Child processes: real ones, but for "route", which is answered inside this process.
#include <windows.h>

#include "machine/Call.h"
#include "machine/RealCalls.h"
#include "machine/Text.h"
#include "machine/hooks/HandleBook.h"
#include "machine/hooks/Hooks.h"

namespace machine {
namespace {

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

/// Where a child of that request writes to; null where it inherits no such handle.
HANDLE InheritedOutput(const ProcessRequest& request) {
    DWORD flags = 0;
    const bool isHandedOn = request.inheritHandles != FALSE &&
                            (request.startup->dwFlags & STARTF_USESTDHANDLES) != 0 &&
                            GetHandleInformation(request.startup->hStdOutput, &flags) != FALSE &&
                            (flags & HANDLE_FLAG_INHERIT) != 0;
    return isHandedOn ? request.startup->hStdOutput : nullptr;
}

/// The system's own route program is never started, on a real Windows machine either.
BOOL StartRoute(Call& call, const ProcessRequest& request) {
    if (call->routeWatcher) {
        call->routeWatcher();
    }
    const std::string commandLine =
        OrEmpty(request.commandLine != nullptr ? request.commandLine : request.application);
    const RouteChild child(call->state, commandLine,
                           call->faults.OnOutcome("route", {{"command line", commandLine}}),
                           InheritedOutput(request));
    const HANDLE self = GetCurrentProcess();
    HANDLE thread = nullptr;
    Real().DuplicateHandle(self, child.Process(), self, &thread, 0, FALSE, DUPLICATE_SAME_ACCESS);
    *request.information = {child.Process(), thread, GetCurrentProcessId(), GetCurrentThreadId()};
    call->routeChildren.push_back(child);
    return call.Boolean(true);
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
        HandOutHandle(call, kProcessHandle, information->hProcess, OrEmpty(commandLine));
        HandOutHandle(call, kThreadHandle, information->hThread, OrEmpty(commandLine));
    }
    return result;
}

DWORD ServeWaitForSingleObject(Core& core, HANDLE handle, DWORD milliseconds) {
    Call call(core, "WaitForSingleObject", {{"milliseconds", std::to_string(milliseconds)}});
    if (const auto fault = call.Fault()) {
        call.Note("WAIT_FAILED", true, *fault);
        return WAIT_FAILED;
    }
    if (RouteChild* const route = call->FindRouteChild(handle)) {
        route->End();
    }
    const DWORD result =
        call.Unlocked([&] { return Real().WaitForSingleObject(handle, milliseconds); });
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
    const RouteChild* const route = call->FindRouteChild(process);
    if (route != nullptr) {
        *code = route->ExitCode();
    }
    const BOOL result = route != nullptr
                            ? call.Boolean(true)
                            : call.RealBoolean(Real().GetExitCodeProcess(process, code));
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
    if (RouteChild* const route = call->FindRouteChild(process)) {
        return call.Boolean(route->Terminate(code), ERROR_ACCESS_DENIED);
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
