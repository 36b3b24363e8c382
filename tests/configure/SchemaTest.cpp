// All that "configure" prints as JSON is valid by docs/configure.schema.json.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <stdexcept>

#include "tests/configure/Support.h"

namespace {

using namespace configure_tests;

const std::string kJoin = TOOLBOX_SOURCE_DIR "/examples/domain-join";
const std::string kServer = TOOLBOX_SOURCE_DIR "/examples/two-adapter-server";

/// As much of JSON Schema as the document uses; other words are refused.
class Schema {
public:
    Schema() : root_(Json::parse(ReadFile(TOOLBOX_SOURCE_DIR "/docs/configure.schema.json"))) {}

    /// Where the value breaks the schema, a line each.
    std::string Faults(const Json& value) const { return Faults(root_, value, ""); }

private:
    static bool HasType(const Json& value, const std::string& type) {
        return type == "integer" ? value.is_number_integer() : type == value.type_name();
    }

    std::string Faults(const Json& rule, const Json& value, const std::string& place) const {
        static const std::set<std::string> kKnown = {
            "$schema",    "$defs",       "$ref",
            "title",      "description", "type",
            "properties", "required",    "additionalProperties",
            "items",      "minItems",    "enum",
            "anyOf",      "oneOf"};
        for (const auto& [word, unused] : rule.items()) {
            if (!kKnown.contains(word)) {
                throw std::logic_error("a word of the schema that is not known: " + word);
            }
        }
        std::string faults;
        if (rule.contains("$ref")) {
            const std::string target = rule["$ref"].get<std::string>().substr(1);
            faults += Faults(root_.at(Json::json_pointer(target)), value, place);
        }
        if (rule.contains("type")) {
            const Json types = rule["type"].is_array() ? rule["type"] : Json::array({rule["type"]});
            if (std::none_of(types.begin(), types.end(),
                             [&](const Json& type) { return HasType(value, type); })) {
                faults += place + ": not of type " + types.dump() + "\n";
            }
        }
        if (rule.contains("enum") && std::ranges::count(rule["enum"], value) == 0) {
            faults += place + ": is none of " + rule["enum"].dump() + "\n";
        }
        for (const char* word : {"anyOf", "oneOf"}) {
            const Json choices = rule.value(word, Json::array());
            const auto matches = std::count_if(
                choices.begin(), choices.end(),
                [&](const Json& choice) { return Faults(choice, value, place).empty(); });
            if (!choices.empty() && (matches == 0 || (*word == 'o' && matches > 1))) {
                faults += place + ": matches " + std::to_string(matches) + " of " + word + "\n";
            }
        }
        if (value.is_object()) {
            faults += MemberFaults(rule, value, place);
        }
        for (std::size_t i = 0; value.is_array() && rule.contains("items") && i < value.size();
             ++i) {
            faults += Faults(rule["items"], value[i], place + "/" + std::to_string(i));
        }
        if (value.is_array() && value.size() < rule.value("minItems", std::size_t{0})) {
            faults += place + ": too few items\n";
        }
        return faults;
    }

    std::string MemberFaults(const Json& rule, const Json& value, const std::string& place) const {
        std::string faults;
        for (const Json& name : rule.value("required", Json::array())) {
            faults += value.contains(name) ? "" : place + ": lacks " + name.dump() + "\n";
        }
        const Json properties = rule.value("properties", Json::object());
        const Json others = rule.value("additionalProperties", Json(true));
        for (const auto& [name, member] : value.items()) {
            const Json& memberRule = properties.contains(name) ? properties.at(name) : others;
            if (memberRule.is_object()) {
                faults += Faults(memberRule, member, place + "/" + name);
            } else if (memberRule == false) {
                faults += place + ": unknown member " + name + "\n";
            }
        }
        return faults;
    }

    Json root_;
};

TEST(SchemaOfConfigure, EveryKindOfOutputIsValid) {
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
        {{kServer + ".ini", "--machine", kServer + ".json"}, 0},
        {{kJoin + ".ini", "--machine", kJoin + ".json"}, 3},
        {{kJoin + ".ini", "--machine", kJoin + ".json", "--until-done", "--log"}, 0},
        {{kServer + ".ini", "--machine", kServer + ".json", "--fail", "EnableStatic=84"}, 1},
        {{kServer + ".ini", "--machine", kServer + ".json", "--fail", "call:30"}, 1},
        {{kServer + ".ini", "--machine", kServer + ".json", "--fail", "MoveFileA"}, 1},
        {{odd, "--plan"}, 2},
        {{refused}, 65},
        {{"no such file.ini"}, 65},
    };
    const Schema schema;
    for (const Case& tried : cases) {
        const Json result = ConfigureJson(tried.arguments, tried.exitCode);
        EXPECT_EQ(schema.Faults(result), "") << testing::PrintToString(tried.arguments);
    }
}

TEST(SchemaOfConfigure, RefusesWhatIsNoOutput) {
    const Schema schema;
    Json good = ConfigureJson({kJoin + ".ini", "--machine", kJoin + ".json", "--plan"}, 2);
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
