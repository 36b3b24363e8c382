#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/host/HostProcess.h"
#include "tests/support/ScratchFolder.h"

namespace {

using host_tests::BesideProgram;
using host_tests::Outcome;
using host_tests::RunHost;
using host_tests::StartHost;
using Json = nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

Json Parsed(const Outcome& outcome) {
    EXPECT_TRUE(Json::accept(outcome.data)) << outcome.data;
    return Json::parse(outcome.data, nullptr, false);
}

/// Sends to the module that misbehaves.
Outcome SendOdd(const std::vector<std::string>& words,
                Outcome (&run)(const std::vector<std::string>&) = RunHost) {
    std::vector<std::string> arguments = {"--module", BesideProgram("odd_module.dll"), "send"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return run(arguments);
}

TEST(MessageCommands, WrongUsageSaysWhatIsWrong) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{}, "subcommand is required"},
        {{"sned"}, "no subcommand \"sned\"; did you mean \"send\"?"},
        {{"configure", "--bogus"}, "there is no option \"--bogus\"\n"},
        {{"configure", "x.ini", "--trase=t"}, "no option \"--trase\"; did you mean \"--trace\"?"},
        {{"version", "extra"}, "extra"},
        {{"--format", "xml", "version"}, "xml"},
        {{"version", "--module"}, "--module"},
        {{"version", "--module", ""}, "--module: must not be empty"},
        {{"update-info", "--count", "2147483648"}, "not in range 0 to 2147483646"},
        {{"send"}, "kind is required"},
        {{"send", "Internal"}, "name is required"},
        {{"send", "Internal", "Configure", "Filename"}, "\"Filename\" is not field=value"},
        {{"send", "Internal", "Configure", "Filename=x.ini"}, "changes this machine"},
    };
    for (const auto& [arguments, words] : cases) {
        const Outcome outcome = RunHost(arguments);
        EXPECT_EQ(outcome.exitCode, 64U) << words;
        EXPECT_THAT(outcome.data, IsEmpty());
        EXPECT_THAT(outcome.notes, AllOf(StartsWith("toolbox-host: "), HasSubstr(words)));
    }
    const Outcome json = RunHost({"configure", "--format", "json", "--bogus"});
    EXPECT_EQ(json.exitCode, 64U);
    EXPECT_EQ(Parsed(json), Json::parse(R"({"error": "there is no option \"--bogus\""})"));
}

TEST(MessageCommands, VersionAndUpdateInfo) {
    const Json version = Parsed(RunHost({"version", "--format", "json"}));
    EXPECT_EQ(version["version"], "6.8.282");
    EXPECT_EQ(version["interface"], 1);
    EXPECT_EQ(version["module"], BesideProgram("config.dll"));

    const Outcome text = RunHost({"update-info", "--count", "3"});
    EXPECT_THAT(text.data, AllOf(HasSubstr("Auto-Update-Current3: "),
                                 HasSubstr("\nAuto-Update-Count: 4\nhandler result: 2\n")));
    EXPECT_EQ(RunHost({"send", "Internal", "UpdateInfo", "Auto-Update-Count=3"}).data, text.data);

    const Outcome json = RunHost({"--format", "json", "update-info"});
    EXPECT_THAT(json.notes, IsEmpty());
    EXPECT_EQ(Parsed(json), Json::parse(R"({
                "log": [{"level": 1, "text":
                    "Toolbox-Main:77 Toolbox::DoMagic - Finding handler for Internal=UpdateInfo"}],
                "reply": {"Auto-Update-Current0": "morvane-config-6.8.282.X64.dll",
                          "Auto-Update-Pattern0": "agents\\tovrune\\morvane-config-*.X64.dll",
                          "Auto-Update-Count": 1},
                "result": 2})"));
}

TEST(MessageCommands, TheExitCodeSaysHowTheMessageEnded) {
    EXPECT_EQ(RunHost({"send", "Request", "anything"}).exitCode, 0U);
    const std::pair<const char*, unsigned long> answers[] = {
        {"Success", 0}, {"Failure", 1}, {"Reboot", 3}, {"zero", 1}};
    for (const auto& [answer, exitCode] : answers) {
        EXPECT_EQ(SendOdd({"k", answer}).exitCode, exitCode) << answer;
    }
    const Outcome missing =
        RunHost({"send", "Internal", "Configure", "--yes", "Filename=100%n%s.ini"});
    EXPECT_EQ(missing.exitCode, 1U);
    EXPECT_THAT(missing.notes, HasSubstr("File 100%n%s.ini does not exist\n"));
    EXPECT_EQ(missing.data, "handler result: 0\n");
}

TEST(MessageCommands, ModulesThatCannotBeUsed) {
    const support::ScratchFolder scratch;
    scratch.Write("no-library.dll", "text");
    const std::pair<std::string, const char*> cases[] = {
        {"no-such-file.dll", "cannot load the module"},
        {"no-library.dll", "cannot load the module"},
        {BesideProgram("toolbox-host.exe"), "does not export GetToolboxAPI"},
        {BesideProgram("odd_module_2.dll"), "another version of the interface: 2 instead of 1"},
    };
    for (const auto& [module, words] : cases) {
        const Outcome outcome = RunHost({"version", "--module", module, "--format", "json"});
        EXPECT_EQ(outcome.exitCode, 1U) << module;
        EXPECT_THAT(outcome.notes, AllOf(StartsWith("toolbox-host: "), HasSubstr(words)));
        EXPECT_THAT(Parsed(outcome)["error"].get<std::string>(), HasSubstr(words));
    }
}

TEST(MessageCommands, AModuleThatFailsEndsTheProgramInOrder) {
    const std::pair<const char*, const char*> thrown[] = {
        {"bad_alloc", "toolbox-host: the module failed: std::bad_alloc\n"},
        {"invalid_argument", "toolbox-host: the module failed: stoi\n"},
        {"int", "toolbox-host: the module failed with an exception of an unknown kind\n"},
    };
    for (const auto& [name, line] : thrown) {
        const Outcome text = SendOdd({"k", name});
        EXPECT_EQ(text.exitCode, 1U) << name;
        EXPECT_EQ(text.data, "Reply: one\n");
        EXPECT_EQ(text.notes, std::string("[7] k|-5|ff|\n") + line);

        const Outcome json = SendOdd({"k", name, "--format", "json"});
        EXPECT_EQ(json.exitCode, 1U) << name;
        EXPECT_EQ(json.notes, line);
        const Json document = Parsed(json);
        EXPECT_EQ(document["reply"]["Reply"], "one");
        EXPECT_TRUE(document.contains("error"));
        EXPECT_FALSE(document.contains("result"));
    }
    for (const char* const name : {"abort", "crash"}) {
        const Outcome outcome = SendOdd({"k", name}, StartHost);
        EXPECT_EQ(outcome.exitCode, 1U) << name;
        EXPECT_THAT(outcome.notes, HasSubstr("toolbox-host: crashed: "));
    }
}

TEST(MessageCommands, TextsOfAnyBytesBecomeLinesAndJson) {
    const Outcome text = SendOdd({"100%s", "fields", "field=-7"}, StartHost);
    EXPECT_EQ(text.exitCode, 0U);
    EXPECT_THAT(text.data, StartsWith("Reply: two\nRaw: "));
    EXPECT_THAT(text.data, HasSubstr("\nControls: a\\x0Ab\\x1B[2Jc\\x7F\n: \nNumber: "
                                     "-2147483648\nRead: -7\nResult: fields\n"));
    EXPECT_THAT(text.notes, StartsWith("[7] 100%s|-5|ff|-7\n[0] "));
    EXPECT_THAT(text.notes, testing::EndsWith("\n[1] \n"));

    const Json json = Parsed(SendOdd({"100%s", "fields", "field=-7", "--format", "json"}));
    EXPECT_EQ(json["reply"]["Controls"], "a\nb\x1B[2Jc\x7F");
    EXPECT_EQ(json["reply"]["Number"], -2147483648LL);
    EXPECT_EQ(json["reply"]["Reply"], "two");
    EXPECT_FALSE(json["reply"]["Raw"].get<std::string>().empty());
    EXPECT_EQ(json["log"].size(), 3U);
    EXPECT_EQ(json["log"][2]["text"], "");
}

}  // namespace
