#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "machine/MachineFile.h"
#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;
using host_tests::Outcome;
using testing::HasSubstr;

TEST(Snapshot, IsAMachineFileOfThisMachine) {
    char name[256] = "";
    DWORD size = sizeof name;
    ASSERT_NE(GetComputerNameA(name, &size), 0);

    Files files;
    const std::string file = files.Name("snapshot.json");
    const Outcome written = host_tests::RunHost({"snapshot", "--output", file});
    EXPECT_EQ(written.exitCode, 0U) << written.notes;
    EXPECT_EQ(written.data, "wrote snapshot.json\n");
    const machine::State state = machine::ParseState(ReadFile(file));
    EXPECT_EQ(state.computerName, name);
    EXPECT_FALSE(state.membership.member && state.membership.dnsDomain.empty());

    for (const char* format : {"text", "json"}) {
        const Outcome printed = host_tests::RunHost({"snapshot", "--format", format});
        EXPECT_EQ(printed.exitCode, 0U);
        EXPECT_EQ(machine::ParseState(printed.data), state) << format;
        EXPECT_THAT(printed.notes,
                    format == std::string("text") ? HasSubstr("Not seen") : HasSubstr(""));
    }
}

TEST(Snapshot, CanBePlannedOn) {
    Files files;
    const std::string file = files.Name("planned-snapshot.json");
    ASSERT_EQ(host_tests::RunHost({"snapshot", "-o", file}).exitCode, 0U);
    const std::string config =
        files.Write("planned.ini", "[Networking]\nComputerName=PC-PLANNED\n");
    const Json onFile = ConfigureJson({config, "--machine", file, "--plan"}, 2);
    const Json here = ConfigureJson({config, "--this-machine", "--plan"}, 2);
    EXPECT_EQ(onFile.at("passes"), here.at("passes"));
    EXPECT_EQ(SettingOf(here.at("passes")[0], "computer-name").at("fate"), "change");
    EXPECT_TRUE(FileExists(config));
}

}  // namespace
