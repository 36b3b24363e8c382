#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/host/HostProcess.h"
#include "tests/toolbox/ScratchFile.h"

namespace {

using host_tests::Outcome;
using host_tests::RunHost;
using toolbox_tests::ScratchFile;
using Json = nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kGood = "[Networking]\nComputerName=PC-1\n";
const std::string kWarning = "[Networking]\nComputerName=PC-1\nColour=red\n";
const std::string kError = "[Networking]\n\tComputerName=PC 1\n";

TEST(CheckCommand, TheExitCodeIsTheVerdict) {
    struct VerdictCase {
        std::string text;
        unsigned long plain;
        unsigned long strict;
    };
    for (const VerdictCase& test :
         {VerdictCase{kGood, 0, 0}, {kWarning, 0, 65}, {kError, 65, 65}}) {
        const ScratchFile file(test.text, "verdict.ini");
        EXPECT_EQ(RunHost({"check", file.Path()}).exitCode, test.plain) << test.text;
        EXPECT_EQ(RunHost({"check", "--strict", file.Path()}).exitCode, test.strict) << test.text;
        const Outcome json = RunHost({"check", file.Path(), "--strict", "--format", "json"});
        EXPECT_EQ(json.exitCode, test.strict);
        EXPECT_EQ(Json::parse(json.data)["accepted"], test.strict == 0);
    }
    EXPECT_EQ(RunHost({"check", "no-such-file.ini"}).exitCode, 65U);
    EXPECT_EQ(RunHost({"check"}).exitCode, 64U);
}

TEST(CheckCommand, EachFindingShowsItsLineAndPlace) {
    const ScratchFile file(kError + "Colour=red\n", "100%n.ini");
    const Outcome outcome = RunHost({"check", file.Path()});
    EXPECT_EQ(outcome.data,
              "100%n.ini:2:15: error: \"PC 1\" is no computer name: letters, digits and inner "
              "hyphens, not digits alone; Windows refuses it\n"
              "  2 | \tComputerName=PC 1\n"
              "    | \t             ^~~~\n"
              "100%n.ini:3:1: warning: the module ignores the key \"Colour\"\n"
              "  3 | Colour=red\n"
              "    | ^~~~~~\n"
              "100%n.ini: 1 error, 1 warning\n");
    EXPECT_THAT(outcome.notes, IsEmpty());
    const ScratchFile good(kGood, "good.ini");
    EXPECT_EQ(RunHost({"check", good.Path()}).data, "good.ini: no faults\n");

    const Json json = Json::parse(RunHost({"--format", "json", "check", file.Path()}).data);
    EXPECT_EQ(json["errors"], 1);
    EXPECT_EQ(json["warnings"], 1);
    const Json& finding = json["findings"][0];
    EXPECT_EQ(finding["severity"], "error");
    EXPECT_EQ(finding["code"], "bad-name");
    EXPECT_EQ(finding["line"], 2);
    EXPECT_EQ(finding["column"], 15);
    EXPECT_EQ(finding["length"], 4);
    EXPECT_EQ(finding["source"], "\tComputerName=PC 1");
}

TEST(CheckCommand, LongAndStrangeLinesAreShownInPart) {
    const ScratchFile file("[Networking]\n" + std::string(1 << 20, 'k') +
                               "=x\nComputerName=" + std::string(500, ' ') + "a\x1B[31m\xFF\n",
                           "long.ini");
    const Outcome outcome = RunHost({"check", file.Path()});
    EXPECT_EQ(outcome.exitCode, 65U);
    EXPECT_LT(outcome.data.size(), 2000U);
    EXPECT_THAT(outcome.data, HasSubstr("  3 | ..."));
    EXPECT_THAT(outcome.data, Not(HasSubstr("\x1B")));
    EXPECT_TRUE(Json::accept(RunHost({"--format", "json", "check", file.Path()}).data));
}

}  // namespace
