#include "tests/requests/sweep/Summary.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

namespace sweep {

namespace {

std::map<std::string, Figures>& All() {
    static std::map<std::string, Figures> all;
    return all;
}

char pointUnderWay[256];

LONG WINAPI LastWords(EXCEPTION_POINTERS* crash) {
    std::printf("crashed (%08lX) at: %s\n", crash->ExceptionRecord->ExceptionCode, pointUnderWay);
    std::fflush(stdout);
    return EXCEPTION_CONTINUE_SEARCH;
}

class Printer : public testing::Environment {
public:
    void SetUp() override { SetUnhandledExceptionFilter(&LastWords); }
    void TearDown() override {
        for (const auto& [title, figures] : All()) {
            std::printf("%s:", title.c_str());
            for (const auto& [name, count] : figures) {
                std::printf(" %s %llu;", name.c_str(), static_cast<unsigned long long>(count));
            }
            std::printf(" crashes 0\n");
        }
        std::fflush(stdout);
    }
};

const testing::Environment* const kPrinter = testing::AddGlobalTestEnvironment(new Printer);

}  // namespace

Figures& FiguresOf(const std::string& title) {
    return All()[title];
}

void NotePoint(const std::string& text) {
    std::snprintf(pointUnderWay, sizeof pointUnderWay, "%s", text.c_str());
}

}  // namespace sweep
