#include "host/Interrupt.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "host/ExitCode.h"
#include "host/configure/PrivateFolder.h"

namespace host {

namespace {

bool isOnTerminal = false;

/// Runs on a thread of its own, while the others go on.
BOOL WINAPI OnControl(DWORD event) {
    const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    std::fprintf(stderr, "%stoolbox-host: %s\n", isOnTerminal ? "\n" : "",
                 isKey ? "interrupted" : "ended from outside");
    configure::PrivateFolder::RemoveAll();
    std::_Exit(isKey ? kInterrupted : kEnded);
}

}  // namespace

void EndOnInterrupt(bool onTerminal) {
    isOnTerminal = onTerminal;
    SetConsoleCtrlHandler(OnControl, TRUE);
}

}  // namespace host
