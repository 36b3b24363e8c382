// What the documents show of the program is what it prints: every fenced block that begins with
// "$ ./run", run in the checkout.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;

struct Transcript {
    Arguments arguments;
    std::string printed;
    bool inPart;  // ends with "...": the rest is left out
};

std::vector<Transcript> TranscriptsOf(const std::string& document) {
    const std::string prompt = "$ ./run ";
    std::vector<Transcript> transcripts;
    std::istringstream lines(ReadFile(document));
    bool shown = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(prompt)) {
            std::istringstream words(line.substr(prompt.size()));
            transcripts.push_back({{std::istream_iterator<std::string>(words), {}}, "", false});
            shown = true;
        } else if (line.starts_with("```") || line == "...") {
            if (shown) {
                transcripts.back().inPart = line == "...";
            }
            shown = false;
        } else if (shown) {
            transcripts.back().printed += line + "\n";
        }
    }
    return transcripts;
}

TEST(Transcripts, AreWhatTheProgramPrints) {
    const auto here = std::filesystem::current_path();
    std::filesystem::current_path(TOOLBOX_SOURCE_DIR);
    _putenv("TOOLBOX_NAME=./run");
    std::vector<std::string> documents = {"README.md"};
    for (const auto& entry : std::filesystem::directory_iterator("docs")) {
        if (entry.path().extension() == ".md") {
            documents.push_back(entry.path().string());
        }
    }
    std::size_t count = 0;
    for (const std::string& document : documents) {
        for (const Transcript& shown : TranscriptsOf(document)) {
            const host_tests::Outcome outcome = host_tests::RunHost(shown.arguments);
            std::string printed = outcome.notes + outcome.data;
            if (shown.inPart) {
                printed.resize(std::min(printed.size(), shown.printed.size()));
            }
            EXPECT_EQ(printed, shown.printed)
                << document << ": " << testing::PrintToString(shown.arguments);
            ++count;
        }
    }
    _putenv("TOOLBOX_NAME=");
    std::filesystem::current_path(here);
    EXPECT_EQ(count, 13U);
}

}  // namespace
