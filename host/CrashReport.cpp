#include "host/CrashReport.h"

#include <windows.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "host/ExitCode.h"
#include "host/Terminal.h"

namespace host {

namespace {

[[noreturn]] void Die(const char* what, unsigned long code) {
    std::fprintf(stderr, "toolbox-host: crashed: %s 0x%08lX\n", what, code);
    TellTheEnd();
    std::_Exit(kFailure);
}

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    Die("exception", exception->ExceptionRecord->ExceptionCode);
}

// The module shares the C library's signal table with this program, so its aborts arrive here too.
void OnAbort(int signal) {
    Die("abort, signal", static_cast<unsigned long>(signal));
}

}  // namespace

void ReportCrashes() {
    SetUnhandledExceptionFilter(OnUnhandledException);
    std::signal(SIGABRT, OnAbort);
}

}  // namespace host
