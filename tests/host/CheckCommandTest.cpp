#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "host/check/Rules.h"
#include "tests/host/HostProcess.h"
#include "tests/support/ScratchFile.h"
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

/// What the program prints as JSON is left beside the folder of this test program for check-schema,
/// which runs after it.
Json Printed(const std::string& name, const std::vector<std::string>& arguments) {
    static const auto kFolder = std::filesystem::path(host_tests::BesideProgram("checked-json"));
    std::filesystem::create_directories(kFolder);
    const std::string data = RunHost(arguments).data;
    support::WriteFile(kFolder / name, data);
    return Json::parse(data);
}

TEST(CheckCommand, SeveralFilesAreOneAnswer) {
    const ScratchFolder scratch;
    scratch.Write("good.ini", kGood);
    scratch.Write("bad.ini", kError);
    const Outcome outcome = RunHost({"check", "bad.ini", "none.ini", "good.ini"});
    EXPECT_EQ(outcome.exitCode, 65U);
    EXPECT_THAT(outcome.data,
                testing::EndsWith("bad.ini: 1 error, 0 warnings\ngood.ini: no faults\n"
                                  "3 files, 1 of them not read: 1 error, 0 warnings\n"));
    EXPECT_THAT(outcome.notes, StartsWith("toolbox-host: cannot read none.ini: "));
    EXPECT_EQ(RunHost({"check", "good.ini", "good.ini"}).exitCode, 0U);
    EXPECT_EQ(RunHost({"check", "-", "good.ini", "-"}).exitCode, 64U);

    const Json several =
        Printed("several.json", {"--format", "json", "check", "bad.ini", "none.ini", "good.ini"});
    const Json alone = Printed("one.json", {"--format", "json", "check", "bad.ini"});
    EXPECT_EQ(several["files"][0], alone);
    EXPECT_FALSE(several["files"][1]["accepted"].get<bool>());
    EXPECT_EQ(several["errors"], 1);
    EXPECT_FALSE(several["accepted"].get<bool>());
    const std::string machine = TOOLBOX_SOURCE_DIR "/examples/hyper-v-guest.json";
    Printed("machine.json",
            {"--format", "json", "check", TOOLBOX_SOURCE_DIR "/examples/hyper-v-guest.ini",
             TOOLBOX_SOURCE_DIR "/examples/with-faults.ini", "--machine", machine});
    Printed("none.json", {"--format", "json", "check", "none.ini"});
}

TEST(CheckCommand, SarifNamesRulesPlacesAndWhatWasNotRead) {
    const ScratchFolder scratch;
    scratch.Write("100% good.ini", "\xEF\xBB\xBF; \xE2\x82\xAC\n" + kGood);
    scratch.Write("odd.ini", "[Networking]\nComputerName=\xC3\xA4-1\xE2\x82\xAC\n");
    const Json sarif =
        Printed("all.sarif", {"--format", "sarif", "check", "odd.ini", "none.ini", "100% good.ini",
                              TOOLBOX_SOURCE_DIR "/examples/with-faults.ini"});
    const Json& run = sarif["runs"][0];
    const Json& rules = run["tool"]["driver"]["rules"];
    ASSERT_EQ(rules.size(), host::check::Rules().size());
    for (const Json& result : run["results"]) {
        EXPECT_EQ(result["ruleId"], rules[result["ruleIndex"].get<std::size_t>()]["id"]);
    }
    const auto place = [&run](std::size_t result) {
        return run["results"][result]["locations"][0]["physicalLocation"];
    };
    EXPECT_EQ(run["results"][1]["ruleId"], "bad-name");
    EXPECT_EQ(run["results"][1]["level"], "error");
    EXPECT_EQ(place(1)["artifactLocation"],
              Json::parse(R"({"uri": "odd.ini", "uriBaseId": "%SRCROOT%", "index": 0})"));
    EXPECT_EQ(place(1)["region"], Json::parse(R"({"startLine": 2, "startColumn": 14, "endLine": 2,
                                                  "endColumn": 18})"))
        << "columns are those of UTF-8, counted in UTF-16 units";
    EXPECT_EQ(run["results"][2]["ruleId"], "byte-order-mark");
    EXPECT_EQ(place(2)["artifactLocation"]["uri"], "100%25%20good.ini");
    EXPECT_EQ(place(2)["region"]["endColumn"], 1) << "the mark is no text";
    EXPECT_THAT(place(3)["artifactLocation"]["uri"].get<std::string>(), StartsWith("file:///"));
    const Json& invocation = run["invocations"][0];
    EXPECT_FALSE(invocation["executionSuccessful"].get<bool>());
    EXPECT_EQ(invocation["toolExecutionNotifications"].size(), 1U);

    Printed("no-machine.sarif",
            {"--format", "sarif", "check", "odd.ini", "--machine", "none.json"});
    const Outcome other = RunHost({"--format", "sarif", "version"});
    EXPECT_EQ(other.exitCode, 64U);
    EXPECT_THAT(other.data, IsEmpty());
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
