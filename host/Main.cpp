#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <iostream>

#include "host/CommandLine.h"
#include "host/CrashReport.h"

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
    host::ReportCrashes();
    // Line feeds stay line feeds, so that pipes get the same bytes everywhere.
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    const Utf8Console console;
    return host::Run(argc, argv, std::cout, std::cerr);
}
