#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "common/util/Strings.h"
#include "host/Module.h"
#include "tests/requests/foreign/ForeignHost.h"
#include "tests/support/ScratchFolder.h"

namespace {

std::vector<std::string> calls;

}  // namespace

extern "C" {

void NoteCall(const char* operation, const char* name, const char* value) {
    calls.push_back(util::Format("%s(%s)%s", operation, name, value));
}

void NoteInteger(const char* operation, const char* name, int value) {
    calls.push_back(util::Format("%s(%s)%d", operation, name, value));
}

void NoteLine(unsigned level, const char* format, va_list arguments) {
    calls.push_back(util::Format("Log(%u)", level) + util::FormatV(format, arguments));
}
}

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::StartsWith;

class ForeignHost : public testing::Test {
protected:
    ForeignHost() {
        calls.clear();
        const auto entry = reinterpret_cast<void* (*)()>(reinterpret_cast<void*>(
            GetProcAddress(static_cast<HMODULE>(module_.Handle()), "GetToolboxAPI")));
        api_ = entry();
    }

    const void* api_;

private:
    const host::Module module_{host::Module::DefaultPath()};
};

TEST_F(ForeignHost, ReadsTheRecord) {
    unsigned version[3] = {};
    ForeignGetVersion(api_, &version[0], &version[1], &version[2]);
    EXPECT_EQ(ForeignInterfaceVersion(api_), 1);
    EXPECT_THAT(version, ElementsAre(6U, 8U, 282U));
}

TEST_F(ForeignHost, KindsAndNamesThatAreNotForThisModule) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"Internal", "configure", 2}, {"Request", "Configure", 2}, {"Reply", "", 2},
        {"internal", "Configure", 0}, {"%s%n", "100%", 0},         {"", "", 0},
    };
    for (const auto& [kind, name, result] : cases) {
        calls.clear();
        EXPECT_EQ(ForeignSend(api_, kind, name, "", ""), result);
        EXPECT_THAT(calls, Contains(std::string("Log(1)Toolbox-Main:77 Toolbox::DoMagic - Finding "
                                                "handler for ") +
                                    kind + "=" + name));
        EXPECT_THAT(calls, Each(AnyOf(StartsWith("Get"), StartsWith("Log(1)"))));
    }
}

TEST_F(ForeignHost, EverySlotOfUpdateInfoIsTheOneThatIsMeant) {
    EXPECT_EQ(ForeignSend(api_, "Internal", "UpdateInfo", "Auto-Update-Count", "3"), 2);
    EXPECT_THAT(
        calls,
        ElementsAre("GetKind()", "GetName()",
                    "Log(1)Toolbox-Main:77 Toolbox::DoMagic - Finding handler for "
                    "Internal=UpdateInfo",
                    "GetKind()", "GetName()", "ReadInteger(Auto-Update-Count)0",
                    "WriteText(Auto-Update-Current3)morvane-config-6.8.282.X64.dll",
                    "WriteText(Auto-Update-Pattern3)agents\\tovrune\\morvane-config-*.X64.dll",
                    "WriteInteger(Auto-Update-Count)4"));
}

TEST_F(ForeignHost, EverySlotOfConfigureIsTheOneThatIsMeant) {
    const support::ScratchFolder scratch;
    const std::string name =
        scratch.Write("foreign-100%n%s.ini", "[Global]\nRebootAfterConfig=false\n");
    EXPECT_EQ(ForeignSend(api_, "Internal", "Configure", "Filename", name.c_str()), 1);
    EXPECT_THAT(
        calls,
        ElementsAre("GetKind()", "GetName()",
                    "Log(1)Toolbox-Main:77 Toolbox::DoMagic - Finding handler for "
                    "Internal=Configure",
                    "GetKind()", "GetName()", "Log(1)Configure::HandleMessage",
                    "GetField(Filename)", "Log(0)Configure::HandleMessage(): config file=" + name,
                    "Log(1)Configure::HandleMessage(): about to call ConfigEvent()",
                    "Log(1)Configure::HandleMessage(): about to call Analyze() and RunConfig()",
                    "SetField(Result)Success"));
    // The module has put the file away beside this program.
    EXPECT_TRUE(std::filesystem::remove(
        std::filesystem::path(host::Module::DefaultPath()).replace_filename(name)));
}

TEST_F(ForeignHost, GetsTheArgumentsOfTheLongestLine) {
    EXPECT_EQ(ForeignSend(api_, nullptr, nullptr, "", ""), 0);
    EXPECT_THAT(calls,
                ElementsAre("Log(0)Toolbox-Main:103 Toolbox::DoMagic caught an unhandled exception",
                            "Log(0)Exception Details: Toolbox-Main:71 - DoMagic - Bad Parameter "
                            "(NULL) (error = 0)"));
}

#ifndef _MSC_VER
TEST_F(ForeignHost, CannotCatchWhatLeavesTheModule) {
    // A name that is null: this program sees what the foreign host's catch (...) has passed over.
    EXPECT_THROW(ForeignSend(api_, "Internal", nullptr, "", ""), std::logic_error);
}
#endif

}  // namespace
