#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/configure/SchemaCheck.h"
#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const char* const kJoin = TOOLBOX_SOURCE_DIR "/examples/domain-join.ini";
const char* const kJoinMachine = TOOLBOX_SOURCE_DIR "/examples/domain-join.json";
const char* const kServer = TOOLBOX_SOURCE_DIR "/examples/two-adapter-server.ini";
const char* const kServerMachine = TOOLBOX_SOURCE_DIR "/examples/two-adapter-server.json";

Json Schema() {
    return Json::parse(ReadFile(TOOLBOX_SOURCE_DIR "/docs/configure.schema.json"));
}

TEST(Schema, EveryKindOfOutputIsValid) {
    Files files;
    const std::string odd = files.Write("odd.ini",
                                        "[Printers]\nCount=1\n[TCP/IP]\nDescription=x\nDHCP=true\n"
                                        "DHCP=false\nAdress=1.2.3.4\n");
    const std::string refused =
        files.Write("refused.ini", "[TCP/IP]\nDHCP=true\n[NicEntry1]\nDHCP=true\n");
    struct Case {
        Arguments arguments;
        unsigned long exitCode;
    };
    const Case cases[] = {
        {{kServer, "--machine", kServerMachine}, 0},
        {{kJoin, "--machine", kJoinMachine}, 3},
        {{kJoin, "--machine", kJoinMachine, "--until-done", "--log"}, 0},
        {{kServer, "--machine", kServerMachine, "--fail", "EnableStatic=84"}, 1},
        {{kServer, "--machine", kServerMachine, "--fail", "call:30"}, 1},
        {{kServer, "--machine", kServerMachine, "--fail", "MoveFileA"}, 1},
        {{odd, "--plan"}, 2},
        {{refused}, 65},
        {{"no such file.ini"}, 65},
    };
    const Json schema = Schema();
    for (const Case& tried : cases) {
        const Json result = ConfigureJson(tried.arguments, tried.exitCode);
        EXPECT_THAT(CheckSchema(schema, result), IsEmpty())
            << testing::PrintToString(tried.arguments);
    }
}

TEST(Schema, TheCheckFindsWhatIsWrong) {
    const Json good = ConfigureJson({kJoin, "--machine", kJoinMachine, "--plan"}, 2);
    const Json schema = Schema();
    const std::pair<const char*, std::function<void(Json&)>> faults[] = {
        {"unknown member", [](Json& json) { json["extra"] = 1; }},
        {"matches 0 of anyOf", [](Json& json) { json.erase("passes"); }},
        {"/file: not of type", [](Json& json) { json["file"] = 1; }},
        {"is none of", [](Json& json) { json["passes"][0]["settings"][0]["fate"] = "perhaps"; }},
        {"/restart/then: lacks \"reply\"",
         [](Json& json) { json["restart"]["then"].erase("reply"); }},
        {"of oneOf", [](Json& json) { json["passes"][0]["failure"] = "yes"; }},
        {"too few items", [](Json& json) { json["passes"] = Json::array(); }},
        {"/reply/Result: not of type",
         [](Json& json) { json["passes"][0]["reply"]["Result"] = true; }},
    };
    for (const auto& [words, spoil] : faults) {
        Json spoilt = good;
        spoil(spoilt);
        const auto found = CheckSchema(schema, spoilt);
        ASSERT_THAT(found, SizeIs(1)) << words;
        EXPECT_THAT(found.front(), HasSubstr(words));
    }
}

}  // namespace
