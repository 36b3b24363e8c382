// "fleet" says of each machine what "configure --plan" says of it alone. Its JSON is left for
// check-schema, as configure's is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kRename = "[Networking]\nComputerName=PC7\n";

std::string Machine(const std::string& name) {
    return R"({"computerName": ")" + name + R"("})";
}

Outcome Fleet(const Arguments& arguments) {
    return host_tests::RunHost(With({"fleet"}, arguments));
}

std::vector<Json> FleetJson(const Arguments& arguments) {
    std::vector<Json> machines;
    std::istringstream lines(Fleet(With(arguments, {"--format", "json"})).data);
    for (std::string line; std::getline(lines, line);) {
        machines.push_back(Json::parse(line));
    }
    return machines;
}

TEST(Fleet, EachLineIsWhatAPlanOfThatMachineAlonePrints) {
    const auto printed = std::filesystem::current_path() / "printed-fleet";
    std::filesystem::remove_all(printed);
    std::filesystem::create_directory(printed);
    const std::string folder = TOOLBOX_SOURCE_DIR "/examples/fleet";
    std::vector<std::string> names;
    for (Json machine : FleetJson({folder})) {
        names.push_back(machine.at("name"));
        support::WriteFile(printed / (names.back() + ".json"), machine.dump());
        const std::string stem = folder + "/" + names.back();
        const Json alone = ConfigureJson({stem + ".ini", "--machine", stem + ".json", "--plan"},
                                         machine.at("exitCode"));
        machine.erase("name");
        machine.erase("exitCode");
        EXPECT_EQ(machine, alone) << stem;
    }
    EXPECT_THAT(names, testing::ElementsAre("attic", "desk-1", "desk-2", "sales-7", "till"));
}

TEST(Fleet, WhatIsNoPairIsARowOfItsOwn) {
    const Files files;
    std::filesystem::create_directories("f/folder.ini");
    files.Write("f/Mixed.INI", kRename);
    files.Write("f/mixed.Json", Machine("A"));
    files.Write("f/notes.txt", "");
    files.Write("f/alone.ini", kRename);
    for (const wchar_t* const stem : {L"f/b\u00FCro", L"f/\u6771"}) {
        support::WriteFile(std::wstring(stem) + L".ini", kRename);
        support::WriteFile(std::wstring(stem) + L".json", Machine("PC7"));
    }
    files.Write("f/folder.json", Machine("A"));
    files.Write("f/hostile.ini", kRename);
    files.Write("f/hostile.json", R"({"computerName": "A", "\u001b[2J": 1})");
    files.Write("f/refused.ini", "[TCP/IP]\nDHCP=true\n[NicEntry1]\nDHCP=true\n");
    files.Write("f/refused.json", Machine("A"));
    const Outcome outcome = Fleet({"f"});
    EXPECT_EQ(outcome.exitCode, 65U);
    EXPECT_THAT(outcome.notes, IsEmpty());
    EXPECT_THAT(
        outcome.data,
        HasSubstr(
            "  Machine  Changes  Right  Restart\n"
            "? ?              -      -  -             a name that the system's code page cannot "
            "spell\n"
            "? alone          -      -  -             there is no machine file f/alone.json\n"
            "= b\xC3\xBCro           0      1  no\n"
            "? folder         -      -  -             there is no configuration file "
            "f/folder.ini\n"
            "? hostile        -      -  -             f/hostile.json: /\\x1B[2J: no such member\n"
            "~ mixed          1      0  needed\n"
            "! refused        0      0  no            would fail: "));
    EXPECT_THAT(outcome.data,
                HasSubstr("7 machines: 1 to change (1 change), 1 right already, 1 would fail, 4 "
                          "without a plan. 1 restart.\n"));
}

TEST(Fleet, TheWorstMachineGivesTheExitCode) {
    const Files files;
    for (const char* const folder : {"right", "changes", "bad", "failing", "none"}) {
        std::filesystem::create_directory(folder);
    }
    files.Write("right/a.json", Machine("PC7"));
    files.Write("changes/a.json", Machine("A"));
    files.Write("changes/b.json", Machine("PC7"));
    files.Write("changes/b.ini", "nobody reads it");
    files.Write("bad/a.json", "{");
    files.Write("bad/b.json", Machine("A"));
    files.Write("failing/a.json", "{");
    files.Write("failing/b.json", Machine("A"));
    files.Write("rename.ini", kRename);
    files.Write("dhcp.ini", "[TCP/IP]\nDescription=x\nDHCP=true\n");
    struct Case {
        Arguments arguments;
        unsigned long exitCode;
        const char* words;
    };
    const Case cases[] = {
        {{"right", "--file", "rename.ini"}, 0, "1 right already. No restart.\nNext: nothing"},
        {{"changes", "--file", "rename.ini"},
         2,
         "\n\n2 machines: 1 to change (1 change), 1 right already. 1 restart.\nNext: look at one "
         "in full: toolbox-host configure --plan rename.ini --machine changes/a.json\n"},
        {{"bad", "--file", "rename.ini"}, 65, "1 to change (1 change), 0 right already, 1 without"},
        {{"failing", "--file", "dhcp.ini"}, 1, "1 would fail, 1 without a plan"},
        {{"right", "--file", "none.ini"}, 65, "cannot read none.ini: "},
        {{"right", "--file", "rename.ini", "--module", "none.dll"}, 1, "cannot load the module"},
        {{"none"}, 65, "none holds no pair of NAME.ini and NAME.json"},
        {{"none", "--file", "rename.ini"}, 65, "none holds no machine file NAME.json"},
        {{"nowhere"}, 65, "cannot read nowhere: "},
        {{"rename.ini"}, 64, "rename.ini is not a folder"},
        {{"right", "--file", "rename.ini", "--report", "right/A.JSON"}, 64, "a machine file"},
        {{"right", "--file", "rename.ini", "--report", "no/page"}, 1, "cannot write no/page"},
        {{""}, 64, "must not be empty"},
    };
    for (const Case& each : cases) {
        const Outcome outcome = Fleet(each.arguments);
        EXPECT_EQ(outcome.exitCode, each.exitCode) << testing::PrintToString(each.arguments);
        EXPECT_THAT(outcome.data + outcome.notes, HasSubstr(each.words));
    }
    EXPECT_THAT(Fleet({"changes", "--file", "rename.ini", "--summary"}).data,
                testing::StartsWith("2 machines: "));
    EXPECT_THAT(FleetJson({"nowhere"}).size(), 1U);
    Fleet({"bad", "--file", "rename.ini", "--report", "page.html"});
    EXPECT_THAT(ReadFile("page.html"),
                testing::AllOf(HasSubstr("no plan"), HasSubstr("Computer name: PC7 (new).")));
}

}  // namespace
