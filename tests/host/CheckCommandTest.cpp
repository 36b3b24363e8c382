#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/host/HostProcess.h"
#include "tests/support/ScratchFolder.h"

namespace {

using host_tests::Outcome;
using host_tests::RunHost;
using support::ScratchFolder;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kGood = "[Networking]\nComputerName=PC-1\n";
const std::string kWarning = "[Networking]\nComputerName=PC-1\nColour=red\n";
const std::string kError = "[Networking]\n\tComputerName=PC 1\n";

TEST(CheckCommand, TheExitCodeIsTheVerdict) {
    const ScratchFolder scratch;
    const std::tuple<std::string, unsigned long, unsigned long> cases[] = {
        {kGood, 0, 0}, {kWarning, 0, 65}, {kError, 65, 65}};
    for (const auto& [text, plain, strict] : cases) {
        scratch.Write("verdict.ini", text);
        EXPECT_EQ(RunHost({"check", "verdict.ini"}).exitCode, plain) << text;
        const Outcome json = RunHost({"check", "verdict.ini", "--strict", "--format", "json"});
        EXPECT_EQ(json.exitCode, strict) << text;
        EXPECT_EQ(Json::parse(json.data)["accepted"], strict == 0);
    }
    const Outcome missing = RunHost({"check", "no-such-file.ini"});
    EXPECT_EQ(missing.exitCode, 65U);
    EXPECT_THAT(missing.notes, StartsWith("toolbox-host: cannot read no-such-file.ini: "));
    EXPECT_EQ(RunHost({"check"}).exitCode, 64U);
}

TEST(CheckCommand, EachFindingShowsItsLineAndPlace) {
    const ScratchFolder scratch;
    const std::string file = scratch.Write("100%n.ini", kError + "Colour=red\n");
    const Outcome outcome = RunHost({"check", file});
    EXPECT_EQ(
        outcome.data,
        "100%n.ini:2:15: error: \"PC 1\" is not a valid computer name: letters, digits and inner "
        "hyphens, not digits alone; Windows refuses it\n"
        "  2 | \tComputerName=PC 1\n"
        "    | \t             ^~~~\n"
        "100%n.ini:3:1: warning: the module ignores the key \"Colour\"\n"
        "  3 | Colour=red\n"
        "    | ^~~~~~\n"
        "100%n.ini: 1 error, 1 warning\n");
    EXPECT_THAT(outcome.notes, IsEmpty());
    EXPECT_EQ(RunHost({"check", scratch.Write("good.ini", kGood)}).data, "good.ini: no faults\n");

    const Json json = Json::parse(RunHost({"--format", "json", "check", file}).data);
    EXPECT_EQ(json["errors"], 1);
    EXPECT_EQ(json["warnings"], 1);
    EXPECT_THAT(json["findings"][0].dump(),
                AllOf(HasSubstr(R"("severity":"error")"), HasSubstr(R"("code":"bad-name")"),
                      HasSubstr(R"("line":2)"), HasSubstr(R"("column":15)"),
                      HasSubstr(R"("length":4)"), HasSubstr(R"("source":"\tComputerName=PC 1")")));
}

TEST(CheckCommand, LongAndStrangeLinesAreShownInPart) {
    const ScratchFolder scratch;
    const std::string file = scratch.Write(
        "long.ini", "[Networking]\n" + std::string(1 << 20, 'k') +
                        "=x\nComputerName=" + std::string(500, ' ') + "a\x1B[31m\xFF\n");
    const Outcome outcome = RunHost({"check", file});
    EXPECT_EQ(outcome.exitCode, 65U);
    EXPECT_LT(outcome.data.size(), 2000U);
    EXPECT_THAT(outcome.data, HasSubstr("  3 | ..."));
    EXPECT_THAT(outcome.data, Not(HasSubstr("\x1B")));
    EXPECT_TRUE(Json::accept(RunHost({"--format", "json", "check", file}).data));
}

}  // namespace
