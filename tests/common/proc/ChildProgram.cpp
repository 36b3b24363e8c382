// A console program for the tests of child processes: child-program <verb> <arguments>.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace {

/// Both streams, a kilobyte of each in turn: neither pipe may wait for the other to be drained.
void Flood(std::size_t bytes) {
    constexpr std::size_t kPiece = 1024;
    for (std::size_t done = 0; done < bytes; done += kPiece) {
        for (const auto& [stream, letter] : {std::pair(stdout, 'o'), std::pair(stderr, 'e')}) {
            std::fputs(std::string(kPiece, letter).c_str(), stream);
            std::fflush(stream);
        }
    }
}

/// Says that it lives by leaving its process id in a file, then sleeps.
void Linger(const char* file, DWORD milliseconds) {
    const std::string unfinished = std::string(file) + ".new";
    if (std::FILE* const out = std::fopen(unfinished.c_str(), "wb")) {
        std::fprintf(out, "%lu", GetCurrentProcessId());
        std::fclose(out);
    }
    MoveFileA(unfinished.c_str(), file);
    Sleep(milliseconds);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view verb = argc > 1 ? argv[1] : "";
    if (verb == "exit" && argc == 3) {
        return std::atoi(argv[2]);
    }
    if (verb == "flood" && argc == 3) {
        Flood(std::strtoul(argv[2], nullptr, 10));
        return 0;
    }
    if (verb == "linger" && argc == 4) {
        Linger(argv[2], std::strtoul(argv[3], nullptr, 10));
        return 5;
    }
    if (verb == "command-line") {
        std::fputs(GetCommandLineA(), stdout);
        return 0;
    }
    return 98;
}
