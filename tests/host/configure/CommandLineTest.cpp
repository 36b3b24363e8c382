#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "machine/MachineFile.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CommandLine : public testing::Test {
protected:
    Files files_;
    const std::string rename_ = files_.Write("rename.ini", "[Networking]\nComputerName=PC7\n");
    const std::string full_ = (files_.Path() / rename_).string();
};

TEST_F(CommandLine, WhatCannotBeDoneIsSaidAndNothingIsRun) {
    const std::string before = ReadFile(rename_);
    const std::string badMachine = files_.Write("bad.json", "{\"computerName\": 1}");
    struct Case {
        Arguments arguments;
        unsigned long exitCode;
        const char* words;
    };
    const Case cases[] = {
        {{}, 64, "file is required"},
        {{rename_, "--this-machine"}, 64, "--yes"},
        {{rename_, "--this-machine", "--machine", "m.json"}, 64, "excludes"},
        {{rename_, "--this-machine", "--yes", "--until-done"}, 64, "simulated machines"},
        {{rename_, "--this-machine", "--yes", "--after-restart"}, 64, "simulated machines"},
        {{rename_, "--this-machine", "--yes", "--trace", "t"}, 64, "simulated machines"},
        {{rename_, "--plan", "--save-machine", "m.json"}, 64, "--plan changes no machine"},
        {{rename_, "--with-passwords"}, 64, "--save-machine"},
        {{rename_, "--fail", "NoSuchCall=1"}, 64, "NoSuchCall"},
        {{rename_, "--fail", "call:x"}, 64, "call:x"},
        {{rename_, "--fail", "Rename,,Get"}, 64, "must not be empty"},
        {{rename_, "--fail", ""}, 64, "--fail: must not be empty"},
        {{rename_, "--machine", ""}, 64, "--machine: must not be empty"},
        {{rename_, "--trace", ""}, 64, "--trace: must not be empty"},
        {{rename_, "--save-machine", ""}, 64, "--save-machine: must not be empty"},
        {{rename_, "--report", ""}, 64, "--report: must not be empty"},
        {{rename_, "--report", full_}, 64, "overwrite the configuration file"},
        {{rename_, "--report", "x", "--undo-file", "./x"}, 64, "what --undo-file writes"},
        {{rename_, "--plan", "--trace", "./RENAME.INI"}, 64, "overwrite the configuration file"},
        {{rename_, "--save-machine", full_}, 64, "overwrite the configuration file"},
        {{rename_, "--plan", "--undo-file", full_}, 64, "overwrite the configuration file"},
        {{rename_, "--machine", badMachine, "--trace", badMachine}, 64, "overwrite the machine"},
        {{rename_, "--save-machine", "x", "--trace", "./x"}, 64, "what --save-machine writes"},
        {{rename_, "--machine", "missing.json"}, 65, "cannot read missing.json: "},
        {{rename_, "--machine", badMachine}, 65, "/computerName"},
        {{"missing.ini"}, 65, "cannot read missing.ini: "},
        {{"missing.ini", "--this-machine", "--yes"}, 65, "cannot read missing.ini: "},
    };
    for (const Case& tried : cases) {
        const Outcome outcome = Configure(tried.arguments);
        EXPECT_EQ(outcome.exitCode, tried.exitCode) << tried.words;
        EXPECT_THAT(outcome.data, IsEmpty()) << tried.words;
        EXPECT_THAT(outcome.notes, HasSubstr(tried.words));
    }
    EXPECT_EQ(ReadFile(rename_), before);
}

TEST_F(CommandLine, DataAndTheRestGoTheirOwnWays) {
    const Outcome outcome = host_tests::StartHost({"configure", rename_, "--log"});
    EXPECT_THAT(outcome.data, HasSubstr("\nNext: restart the machine"));
    EXPECT_THAT(outcome.data, Not(HasSubstr("HandleMessage")));
    EXPECT_THAT(outcome.notes, HasSubstr("[1] Configure::HandleMessage\n"));
    // No terminal: neither colours nor progress.
    EXPECT_THAT(outcome.data + outcome.notes, AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\r"))));
}

TEST_F(CommandLine, FaultsWithoutEffectAreNamed) {
    const Arguments arguments = {rename_,
                                 "--fail",
                                 "Rename[path~WORKSTATION1]=5,MoveHere",
                                 "--fail",
                                 "call:9999,CoSetProxyBlanket#1",
                                 "--fail",
                                 "Rename[in~Name=\"PC8\", UserName]=5"};
    EXPECT_EQ(Configure(arguments).notes,
              "toolbox-host: --fail MoveHere made no call fail\n"
              "toolbox-host: --fail call:9999 made no call fail\n"
              "toolbox-host: --fail CoSetProxyBlanket#1 made a call fail that the module passed "
              "over\n"
              "toolbox-host: --fail Rename[in~Name=\"PC8\", UserName]=5 made no call fail\n");
    const Json document = ConfigureJson(arguments, 1);
    EXPECT_EQ(document["unusedFaults"].size(), 3U);
    EXPECT_EQ(document["passedOverFaults"], Json({"CoSetProxyBlanket#1"}));
}

TEST_F(CommandLine, TheTraceComesInTwoFormats) {
    const std::string example = TOOLBOX_SOURCE_DIR "/examples/static-workstation.";
    const Arguments toStatic = {example + "ini", "--machine", example + "json"};
    EXPECT_EQ(Configure(With(toStatic, {"--trace", "t.jsonl"})).exitCode, 0U);
    Json last;
    std::size_t found = 0;
    std::istringstream stream(ReadFile("t.jsonl"));
    for (std::string line; std::getline(stream, line);) {
        ASSERT_TRUE(Json::accept(line)) << line;
        last = Json::parse(line);
        found += last["arguments"].value("method", "") == "EnableStatic" ? 1 : 0;
    }
    EXPECT_EQ(found, 1U);
    EXPECT_EQ(last["time"], 2'000 + 8'000) << "of the method, and of the pause behind it";

    EXPECT_EQ(Configure({rename_, "--trace", "t.trace.json", "--fail", "Rename"}).exitCode, 1U);
    const Json events = Json::parse(ReadFile("t.trace.json")).at("traceEvents");
    EXPECT_TRUE(std::ranges::any_of(events, [](const Json& event) {
        return event["args"].value("ReturnValue (injected)", "") == "5";
    }));

    for (const Arguments& arguments : {Arguments{"configure", rename_, "--trace", "no/folder/t"},
                                       Arguments{"configure", rename_, "--report", "no/folder/t"},
                                       Arguments{"snapshot", "--output", "no/folder/t"}}) {
        const Outcome outcome = host_tests::RunHost(arguments);
        EXPECT_EQ(outcome.exitCode, 1U);
        EXPECT_THAT(outcome.notes, HasSubstr("no/folder/t"));
    }
}

TEST_F(CommandLine, SavedMachinesCarryPasswordsOnlyWhereTheyWereOrAreAskedFor) {
    const std::string machine =
        files_.Write("machine.json", machine::FormatState(machine::DefaultState()));
    const std::string password = machine::DefaultState().domains[0].accounts[0].password;
    ASSERT_FALSE(password.empty());
    const auto save = [&](const Arguments& more) {
        return Configure(With({rename_, "--machine", machine, "--save-machine"}, more)).notes;
    };
    EXPECT_THAT(save({"other.json"}), HasSubstr("without the passwords"));
    EXPECT_THAT(ReadFile("other.json"), AllOf(HasSubstr("PC7"), Not(HasSubstr(password))));
    EXPECT_EQ(save({"other.json", "--with-passwords"}), "");
    EXPECT_THAT(ReadFile("other.json"), AllOf(HasSubstr("PC7"), HasSubstr(password)));
    save({"./" + machine});
    EXPECT_THAT(ReadFile(machine), AllOf(HasSubstr("PC7"), HasSubstr(password)));
}

}  // namespace
