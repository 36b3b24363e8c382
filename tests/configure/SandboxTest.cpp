// A run on a simulated machine leaves this machine's files alone.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::BesideProgram;

constexpr const char* kConfig = "[Networking]\nComputerName=PC7\nWorkgroup=true\nDomain=LAB\n";

std::set<std::string> ListFolder(const std::string& pattern) {
    std::set<std::string> names;
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        names.insert(found.cFileName);
    } while (FindNextFileA(search, &found) != 0);
    FindClose(search);
    return names;
}

std::set<std::string> PrivateFolders() {
    char folder[MAX_PATH + 1] = "";
    GetTempPathA(sizeof folder, folder);
    return ListFolder(std::string(folder) + "toolbox-host-*");
}

TEST(Sandbox, TheFileStaysWhateverTheModuleDoesWithIt) {
    Files files;
    const std::string config = files.Write("kept.ini", kConfig);
    SetFileAttributesA(config.c_str(), FILE_ATTRIBUTE_READONLY);
    // A file of that name beside the program is what the module would replace.
    const std::string beside = files.Write(BesideProgram("kept.ini"), "not to be touched");
    const std::set<std::string> foldersBefore = PrivateFolders();
    const std::set<std::string> rootBefore = ListFolder("\\*");
    const std::set<std::string> folderBefore = ListFolder(BesideProgram("*.ini"));
    for (const char* fault : {"", "MoveFileA", "DeleteFileA", "GetModuleFileNameA",
                              "GetFileAttributesA#2", "LsaOpenPolicy", "Decrypt"}) {
        Arguments arguments = {config, "--until-done"};
        if (*fault != '\0') {
            arguments.insert(arguments.end(), {"--fail", fault});
        }
        Configure(arguments);
        EXPECT_EQ(ReadFile(config), kConfig) << fault;
        EXPECT_EQ(ReadFile(beside), "not to be touched") << fault;
    }
    Configure({beside});
    EXPECT_EQ(ReadFile(beside), "not to be touched");
    EXPECT_EQ(PrivateFolders(), foldersBefore);
    EXPECT_EQ(ListFolder("\\*"), rootBefore);
    EXPECT_EQ(ListFolder(BesideProgram("*.ini")), folderBefore);
    SetFileAttributesA(config.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(Sandbox, ARunHereTakesTheFileAsTheAgentWould) {
    // Nothing in the file concerns the machine, so that this one can be used.
    Files files;
    const std::string config = files.Write("here.ini", "[Global]\nRebootAfterConfig=false\n");
    const std::string away = files.Name(BesideProgram("here.ini"));
    const Json result = ConfigureJson({config, "--this-machine", "--yes"}, 0);
    EXPECT_EQ(result.at("machine"), "this machine");
    EXPECT_EQ(result.at("passes")[0].at("reply").at("Result"), "Success");
    EXPECT_EQ(SettingOf(result.at("passes")[0], "restart-answer").at("fate"), "label");
    EXPECT_FALSE(FileExists(config));
    EXPECT_TRUE(FileExists(away));
}

}  // namespace
