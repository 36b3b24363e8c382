#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/Cipher.h"
#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kNothing = "[Global]\nRebootAfterConfig=true\n";

TEST(CommandLine, WhatCannotBeDoneIsSaidAndNothingIsRun) {
    Files files;
    const std::string config = files.Write("refusals.ini", kNothing);
    const std::string badMachine = files.Write("bad.json", "{\"computerName\": 1}");
    struct Case {
        Arguments arguments;
        unsigned long exitCode;
        const char* words;
    };
    const Case cases[] = {
        {{}, 64, "file is required"},
        {{config, "--this-machine"}, 64, "--yes"},
        {{config, "--this-machine", "--machine", "m.json"}, 64, "excludes"},
        {{config, "--this-machine", "--yes", "--until-done"}, 64, "simulated machines"},
        {{config, "--this-machine", "--yes", "--trace", "t"}, 64, "simulated machines"},
        {{config, "--plan", "--save-machine", "m.json"}, 64, "--plan changes no machine"},
        {{config, "--with-passwords"}, 64, "--save-machine"},
        {{config, "--fail", "NoSuchCall=1"}, 64, "NoSuchCall"},
        {{config, "--fail", "call:x"}, 64, "call:x"},
        {{config, "--machine", "missing.json"}, 65, "missing.json"},
        {{config, "--machine", badMachine}, 65, "/computerName"},
        {{"missing.ini"}, 65, "missing.ini"},
        {{"missing.ini", "--this-machine", "--yes"}, 65, "missing.ini"},
    };
    for (const Case& tried : cases) {
        const Outcome outcome = Configure(tried.arguments);
        EXPECT_EQ(outcome.exitCode, tried.exitCode) << tried.words;
        EXPECT_THAT(outcome.data, IsEmpty()) << tried.words;
        EXPECT_THAT(outcome.notes, HasSubstr(tried.words));
    }
    EXPECT_EQ(ReadFile(config), kNothing);
}

TEST(CommandLine, ExitCodesTellTheOutcomesApart) {
    Files files;
    const std::string nothing = files.Write("nothing.ini", kNothing);
    const std::string rename = files.Write("rename.ini", "[Networking]\nComputerName=PC7\n");
    const std::string quiet = files.Write(
        "quiet.ini", "[Global]\nRebootAfterConfig=false\n[Networking]\nComputerName=PC7\n");
    const std::string refused =
        files.Write("refused.ini", "[NicEntry0]\nDHCP=true\n[NicEntry1]\nDHCP=true\n");
    const std::string notAnAddress = files.Write(
        "no-address.ini", "[TCP/IP]\nDescription=x\nDHCP=false\nAddress=nowhere\nNetmask=x\n");
    const std::pair<Arguments, unsigned long> cases[] = {
        {{nothing}, 0},
        {{nothing, "--plan"}, 0},
        {{rename}, 3},
        {{rename, "--plan"}, 2},
        {{rename, "--until-done"}, 0},
        {{rename, "--until-done", "--plan"}, 2},
        {{rename, "--fail", "Rename=5"}, 1},
        {{rename, "--plan", "--fail", "Rename=5"}, 1},
        {{quiet}, 1},
        {{refused}, 65},
        {{refused, "--plan"}, 65},
        {{notAnAddress}, 65},
        {{rename, "--fail", "ConnectServer"}, 1},
    };
    for (const auto& [arguments, exitCode] : cases) {
        const Outcome outcome = Configure(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode)
            << testing::PrintToString(arguments) << outcome.data << outcome.notes;
    }
}

TEST(CommandLine, DataAndTheRestGoTheirOwnWays) {
    Files files;
    const std::string config = files.Write("ways.ini", "[Networking]\nComputerName=PC7\n");
    const Outcome outcome = Configure({config, "--log"});
    EXPECT_THAT(outcome.data, HasSubstr("Reply: Result=Reboot"));
    EXPECT_THAT(outcome.data, Not(HasSubstr("HandleMessage")));
    EXPECT_THAT(outcome.notes, HasSubstr("[1] Configure::HandleMessage\n"));
    // No terminal: neither colours nor progress.
    EXPECT_THAT(outcome.data + outcome.notes, AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr("\r"))));
}

TEST(CommandLine, TheTraceComesInTwoFormats) {
    Files files;
    const std::string config = files.Write("traced.ini", "[Networking]\nComputerName=PC7\n");
    const std::string lines = files.Name("traced.jsonl");
    const std::string timeline = files.Name("traced.trace.json");
    EXPECT_EQ(Configure({config, "--trace", lines}).exitCode, 3U);
    EXPECT_EQ(Configure({config, "--trace", timeline, "--fail", "Rename"}).exitCode, 1U);

    std::size_t renames = 0;
    std::istringstream stream(ReadFile(lines));
    for (std::string line; std::getline(stream, line);) {
        ASSERT_TRUE(Json::accept(line)) << line;
        const Json call = Json::parse(line);
        renames += call["arguments"].value("method", "") == "Rename" ? 1 : 0;
    }
    EXPECT_EQ(renames, 1U);
    const Json events = Json::parse(ReadFile(timeline)).at("traceEvents");
    const auto isRename = [](const Json& event) {
        return event["args"].value("ReturnValue (injected)", "") == "5";
    };
    EXPECT_TRUE(std::any_of(events.begin(), events.end(), isRename));

    const Arguments unwritable[] = {{"configure", config, "--trace", "no/such/folder/t.json"},
                                    {"snapshot", "--output", "no/such/folder/t.json"}};
    for (const Arguments& arguments : unwritable) {
        const Outcome outcome = host_tests::RunHost(arguments);
        EXPECT_EQ(outcome.exitCode, 1U);
        EXPECT_THAT(outcome.notes, HasSubstr("no/such/folder/t.json"));
    }
}

TEST(CommandLine, SavedMachinesCarryPasswordsOnlyWhereTheyWereOrAreAskedFor) {
    Files files;
    const std::string config = files.Write("saved.ini", "[Networking]\nComputerName=PC7\n");
    const std::string machine = files.Write("saved-machine.json", machine::DefaultState());
    const std::string other = files.Name("saved-other.json");
    const std::string password = machine::DefaultState().domains[0].accounts[0].password;
    ASSERT_FALSE(password.empty());

    const Outcome without = Configure({config, "--machine", machine, "--save-machine", other});
    EXPECT_THAT(ReadFile(other), AllOf(HasSubstr("PC7"), Not(HasSubstr(password))));
    EXPECT_THAT(without.notes, HasSubstr("without the passwords"));

    const Outcome with =
        Configure({config, "--machine", machine, "--save-machine", other, "--with-passwords"});
    EXPECT_THAT(ReadFile(other), AllOf(HasSubstr("PC7"), HasSubstr(password)));
    EXPECT_THAT(with.notes, IsEmpty());

    Configure({config, "--machine", machine, "--save-machine", "./" + machine});
    EXPECT_THAT(ReadFile(machine), AllOf(HasSubstr("PC7"), HasSubstr(password)));
}

}  // namespace
