// What a run does to this machine: nothing when it is on a simulated one.
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::BesideProgram;

/// Files and folders of that name, and of any ending, in the folder.
std::set<std::string> List(const std::filesystem::path& folder, const std::string& start) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(start)) {
            names.insert(name);
        }
    }
    return names;
}

/// Programs that run beside this one have folders of their own there.
std::vector<std::set<std::string>> WhatIsThere() {
    const std::string own = "toolbox-host-" + std::to_string(GetCurrentProcessId()) + "-";
    return {List(std::filesystem::temp_directory_path(), own),
            List(std::filesystem::current_path().root_path(), ""), List(BesideProgram(""), "kept")};
}

TEST(Sandbox, TheFileStaysWhateverTheModuleDoesWithIt) {
    constexpr const char* kText = "[Networking]\nComputerName=PC7\nWorkgroup=true\nDomain=LAB\n";
    const Files files;
    const std::string config = files.Write("kept.ini", kText);
    SetFileAttributesA(config.c_str(), FILE_ATTRIBUTE_READONLY);
    // A file of that name beside the program is what the module would replace.
    const std::string beside = BesideProgram("kept.ini");
    support::WriteFile(beside, "not to be touched");
    const auto before = WhatIsThere();
    for (const char* fault :
         {"Rename", "MoveFileA", "GetModuleFileNameA", "GetFileAttributesA#2", "LsaOpenPolicy"}) {
        const auto outcome = Configure({config, "--until-done", "--fail", fault});
        EXPECT_EQ(outcome.notes.find("made no call fail"), std::string::npos) << fault;
        EXPECT_EQ(ReadFile(config), kText) << fault;
        EXPECT_EQ(ReadFile(beside), "not to be touched") << fault;
    }
    Configure({config, "--until-done"});
    Configure({beside});
    EXPECT_EQ(ReadFile(config), kText);
    EXPECT_EQ(ReadFile(beside), "not to be touched");
    EXPECT_EQ(WhatIsThere(), before);
    SetFileAttributesA(config.c_str(), FILE_ATTRIBUTE_NORMAL);
    std::filesystem::remove(beside);
}

TEST(Sandbox, WhatAnEndedRunLeftGoesAndWhatAnotherUsesStays) {
    const Files files;
    const auto left = std::filesystem::temp_directory_path() / "toolbox-host-4-left";
    const auto used = std::filesystem::temp_directory_path() / "toolbox-host-4-used";
    std::filesystem::create_directories(left / "agent");
    support::WriteFile(left / "copy.ini", "");
    std::filesystem::create_directory(used);
    const HANDLE owner = CreateMutexA(nullptr, FALSE, "Global\\toolbox-host-4-used");
    Configure({files.Write("rename.ini", "[Networking]\nComputerName=PC7\n")});
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(std::filesystem::remove(used));
    CloseHandle(owner);
}

TEST(Sandbox, ARunHereTakesTheFileAsTheAgentWould) {
    // Nothing in the file concerns the machine, so that this one can be used.
    const Files files;
    files.Write("here.ini", "[Global]\nRebootAfterConfig=false\n");
    const Json result = ConfigureJson({"here.ini", "--this-machine", "--yes"}, 0);
    EXPECT_EQ(result.at("machine"), "this machine");
    EXPECT_EQ(result.at("passes")[0].at("reply").at("Result"), "Success");
    EXPECT_FALSE(std::filesystem::exists("here.ini"));
    EXPECT_TRUE(std::filesystem::remove(BesideProgram("here.ini")));
}

}  // namespace
