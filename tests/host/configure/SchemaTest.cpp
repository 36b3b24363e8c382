// The exit codes of "configure" tell its outcomes apart. What it prints as JSON is left beside this
// program's folder for check-schema, which runs after it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;

TEST(ConfigureJson, ExitCodesTellTheOutcomesApart) {
    const auto printed = std::filesystem::current_path() / "printed";
    std::filesystem::remove_all(printed);
    std::filesystem::create_directory(printed);
    const Files files;
    const std::string server = TOOLBOX_SOURCE_DIR "/examples/two-adapter-server";
    const std::string odd = files.Write("odd.ini",
                                        "[Printers]\nCount=1\n[TCP/IP]\nDescription=x\nDHCP=true\n"
                                        "DHCP=false\nAdress=1.2.3.4\n");
    const std::string refused =
        files.Write("refused.ini", "[TCP/IP]\nDHCP=true\n[NicEntry1]\nDHCP=true\n");
    const std::string nothing = files.Write("nothing.ini", "[Global]\nRebootAfterConfig=true\n");
    const std::string rename = files.Write("rename.ini", "[Networking]\nComputerName=PC7\n");
    const std::string quiet = files.Write(
        "quiet.ini", "[Global]\nRebootAfterConfig=false\n[Networking]\nComputerName=PC7\n");
    const std::string notAnAddress = files.Write(
        "no-address.ini", "[TCP/IP]\nDescription=x\nDHCP=false\nAddress=nowhere\nNetmask=x\n");
    const std::pair<Arguments, unsigned long> cases[] = {
        {{nothing}, 0},
        {{nothing, "--plan"}, 0},
        {{rename}, 3},
        {{rename, "--plan"}, 2},
        {{rename, "--until-done", "--log"}, 0},
        {{rename, "--until-done", "--plan"}, 2},
        {{rename, "--fail", "Rename=5"}, 1},
        {{rename, "--plan", "--fail", "Rename=5"}, 1},
        {{rename, "--fail", "ConnectServer"}, 1},
        {{quiet}, 1},
        {{refused}, 65},
        {{refused, "--plan"}, 65},
        {{notAnAddress}, 65},
        {{odd, "--plan"}, 2},
        {{server + ".ini", "--machine", server + ".json"}, 0},
        {{server + ".ini", "--machine", server + ".json", "--undo-file", "back.ini"}, 0},
        {{server + ".ini", "--machine", server + ".json", "--fail", "EnableStatic=84"}, 1},
        {{server + ".ini", "--machine", server + ".json", "--fail", "Next[query~Caption],MoveHere"},
         1},
        {{server + ".ini", "--machine", server + ".json", "--fail", "MoveFileA"}, 1},
        {{"no such file.ini"}, 65},
    };
    int number = 0;
    for (const auto& [arguments, exitCode] : cases) {
        const Json result = ConfigureJson(arguments, exitCode);
        support::WriteFile(printed / (std::to_string(++number) + ".json"), result.dump());
    }
}

}  // namespace
