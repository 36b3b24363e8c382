// A console program for the tests of child processes: child-program <verb> <arguments>.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void WriteBytes(DWORD standardHandle, std::string_view bytes) {
    HANDLE const handle = GetStdHandle(standardHandle);
    while (!bytes.empty()) {
        DWORD written = 0;
        if (WriteFile(handle, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) ==
            0) {
            std::exit(99);
        }
        bytes.remove_prefix(written);
    }
}

/// Both streams, a kilobyte of each in turn: neither pipe may wait for the other to be drained.
void Flood(std::size_t bytes) {
    constexpr std::size_t kPiece = 1024;
    for (std::size_t done = 0; done < bytes; done += kPiece) {
        WriteBytes(STD_OUTPUT_HANDLE, std::string(kPiece, 'o'));
        WriteBytes(STD_ERROR_HANDLE, std::string(kPiece, 'e'));
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
        WriteBytes(STD_OUTPUT_HANDLE, GetCommandLineA());
        return 0;
    }
    return 98;
}
