#include "tests/sweep/Summary.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <deque>

namespace sweep {

namespace {

std::deque<Summary>& All() {
    static std::deque<Summary> all;
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
        for (const Summary& summary : All()) {
            std::printf("%s: %llu of %llu points tried;", summary.title.c_str(),
                        static_cast<unsigned long long>(summary.points),
                        static_cast<unsigned long long>(summary.possible));
            for (const auto& [kind, count] : summary.answers) {
                std::printf(" %s %llu,", kind.c_str(), static_cast<unsigned long long>(count));
            }
            std::printf(" of these without harm %llu; leaks %llu, crashes 0",
                        static_cast<unsigned long long>(summary.harmless),
                        static_cast<unsigned long long>(summary.leaks));
            for (const auto& [name, count] : summary.kept) {
                std::printf("; kept open on purpose: %llu %s",
                            static_cast<unsigned long long>(count), name.c_str());
            }
            std::printf("\n");
        }
        std::fflush(stdout);
    }
};

const testing::Environment* const printer = testing::AddGlobalTestEnvironment(new Printer);

}  // namespace

Summary& SummaryOf(const std::string& title) {
    for (Summary& summary : All()) {
        if (summary.title == title) {
            return summary;
        }
    }
    All().push_back({});
    All().back().title = title;
    return All().back();
}

void NotePoint(const std::string& text) {
    std::snprintf(pointUnderWay, sizeof pointUnderWay, "%s", text.c_str());
}

}  // namespace sweep
