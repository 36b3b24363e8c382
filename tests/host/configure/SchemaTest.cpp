// All that "configure" prints as JSON is valid by docs/configure.schema.json, and the exit codes
// tell the outcomes apart.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;

/// As much of JSON Schema as the document uses; other words are faults.
class Schema {
public:
    /// Where the value breaks the schema, a line each.
    std::string Faults(const Json& value) const { return Faults(root_, value, ""); }

private:
    std::string Faults(const Json& rule, const Json& value, const std::string& place) const {
        std::string faults;
        for (const auto& [word, content] : rule.items()) {
            faults += FaultsOfWord(rule, word, content, value, place);
        }
        return faults;
    }

    std::string FaultsOfWord(const Json& rule, const std::string& word, const Json& content,
                             const Json& value, const std::string& place) const {
        static const std::set<std::string> kWithoutChecks = {"$schema", "$defs", "title",
                                                             "description", "properties"};
        if (kWithoutChecks.contains(word)) {
            return {};
        }
        std::string faults;
        bool holds = true;
        if (word == "$ref") {
            const std::string target = content.get<std::string>().substr(1);
            faults = Faults(root_.at(Json::json_pointer(target)), value, place);
        } else if (word == "type") {
            const Json types = content.is_array() ? content : Json::array({content});
            holds = std::ranges::count(types, Json(value.type_name())) != 0 ||
                    (value.is_number_integer() && std::ranges::count(types, Json("integer")) != 0);
        } else if (word == "enum") {
            holds = std::ranges::count(content, value) != 0;
        } else if (word == "anyOf") {
            holds = std::ranges::any_of(
                content, [&](const Json& choice) { return Faults(choice, value, place).empty(); });
        } else if (word == "items") {
            for (std::size_t i = 0; value.is_array() && i < value.size(); ++i) {
                faults += Faults(content, value[i], place + "/" + std::to_string(i));
            }
        } else if (word == "required") {
            for (const Json& name : content) {
                holds = holds && (!value.is_object() || value.contains(name));
            }
        } else if (word == "minItems") {
            holds = !value.is_array() || value.size() >= content;
        } else if (word == "additionalProperties" && value.is_object()) {
            faults =
                FaultsOfMembers(rule.value("properties", Json::object()), content, value, place);
        } else {
            holds = word == "additionalProperties";
        }
        return holds ? faults : faults + place + ": " + word + " " + content.dump() + "\n";
    }

    /// Every object of the document says what its other members may be.
    std::string FaultsOfMembers(const Json& known, const Json& others, const Json& value,
                                const std::string& place) const {
        std::string faults;
        for (const auto& [name, member] : value.items()) {
            if (known.contains(name) || others.is_object()) {
                faults += Faults(known.value(name, others), member, place + "/" + name);
            } else {
                faults += place + ": unknown member " + name + "\n";
            }
        }
        return faults;
    }

    const Json root_ = Json::parse(ReadFile(TOOLBOX_SOURCE_DIR "/docs/configure.schema.json"));
};

TEST(SchemaOfConfigure, EveryKindOfOutputIsValidAndNothingElse) {
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
        {{server + ".ini", "--machine", server + ".json", "--fail", "EnableStatic=84"}, 1},
        {{server + ".ini", "--machine", server + ".json", "--fail", "call:30,MoveHere"}, 1},
        {{server + ".ini", "--machine", server + ".json", "--fail", "MoveFileA"}, 1},
        {{"no such file.ini"}, 65},
    };
    const Schema schema;
    for (const auto& [arguments, exitCode] : cases) {
        const Json result = ConfigureJson(arguments, exitCode);
        EXPECT_EQ(schema.Faults(result), "") << testing::PrintToString(arguments);
    }
    Json good = ConfigureJson({rename, "--plan"}, 2);
    for (const char* place : {"/extra", "/file", "/passes/0/settings/0/fate", "/passes/0/failure",
                              "/passes/0/reply/Result"}) {
        Json spoilt = good;
        spoilt[Json::json_pointer(place)] = true;
        EXPECT_NE(schema.Faults(spoilt), "") << place;
    }
    good.erase("passes");
    EXPECT_NE(schema.Faults(good), "");
}

}  // namespace
