#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cstdio>

#include "host/CommandLine.h"
#include "host/CrashReport.h"
#include "host/Interrupt.h"
#include "host/Terminal.h"

namespace {

/// Everything is printed in UTF-8; a console is told so for as long as the program runs.
class Utf8Console {
public:
    Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
    ~Utf8Console() { SetConsoleOutputCP(before_); }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    UINT before_;
};

}  // namespace

int main(int argc, char** argv) {
    host::TakeStandardError();
    host::ReportCrashes();
    _setmode(_fileno(stderr), _O_BINARY);
    const Utf8Console console;
    host::TextStream data(GetStdHandle(STD_OUTPUT_HANDLE), host::WhereOutputLeads());
    host::TextStream notes(GetStdHandle(STD_ERROR_HANDLE), host::WhereErrorsLead());
    host::EndOnInterrupt(notes.Leads().isTerminal);
    const int exitCode = host::Run(argc, argv, data, notes);
    host::TellTheEnd();
    return exitCode;
}
