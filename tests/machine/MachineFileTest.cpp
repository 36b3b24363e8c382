#include "machine/MachineFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <concepts>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

namespace machine {
namespace {

State RichState() {
    State state = DefaultState();
    state.pendingComputerName = "NEXT";
    state.membership = Membership::OfDomain("CORP", "corp.example");
    state.pendingMembership = Membership::OfWorkgroup("OFFICE");
    state.dnsSuffixes = {"corp.example", "example"};
    state.adapters[2].ipEnabled = false;
    state.adapters[2].dhcpEnabled.reset();
    state.adapters[2].ipAddress = state.adapters[2].ipSubnet = TextList();
    state.adapters[2].caption = "[00000007] Adapt\xE9r \x80";
    state.registry = {
        {"SOFTWARE\\Example",
         {RegistryValue::Text("", "default"),
          RegistryValue::Number("Count", 4'000'000'000U),
          {"Unterminated", 1, "abc"},
          {"Expand", 2, std::string("%A%\0", 4)},
          {"Empty", 3, ""},
          {"Short", 4, "\x01\x02"},
          {"Many", 7, std::string("a\0b\0\0", 5)}}},
        {"SOFTWARE\\Empty", {}},
    };
    state.domains[0].reachable = false;
    state.hosts.push_back({"nowhere.example", {}});
    state.adapters[1].condition = Condition::kBehindSwitch;
    state.adapters[0].leaseDueIn = 100;
    state.domains[0].joinAnswer = 58;
    state.domains[0].connectedAs = "visitor";
    state.domains[0].accounts[0].mayReuse = true;
    state.domains[0].accounts[0].quota = 3;
    state.domains[0].owners = {{"PRINTSERVER", "joiner"}};
    state.system = {CryptoLibrary::kWithoutExport, true, true, false, 3, false, {81, 1, 91, 0, 1}};
    return state;
}

template <std::invocable Action>
std::string ErrorOf(Action action) {
    try {
        action();
        return "none";
    } catch (const MachineFileError& error) {
        return error.what();
    }
}

TEST(MachineFile, WhatIsSavedLoadsUnchanged) {
    for (const State& state : {DefaultState(), RichState()}) {
        EXPECT_EQ(ParseState(FormatState(state)), state);
    }
}

TEST(MachineFile, ANameThatIsOnlyShownMayHoldAnyCharacter) {
    const std::pair<const char*, const char*> names[] = {
        {"\xE4\xB8\xAD LAN", "\\u4e2d LAN"}, {"\xC3\xA4", "\xE4"}, {"\\u0041", "\\u0041"}};
    for (const auto& [name, shown] : names) {
        const nlohmann::json adapter = {{"index", 1}, {"connectionName", name}};
        const State state =
            ParseState("{\"computerName\": \"PC1\", \"adapters\": [" + adapter.dump() + "]}");
        EXPECT_EQ(state.adapters.at(0).connectionName, shown);
        const auto saved = nlohmann::json::parse(FormatState(state));
        EXPECT_EQ(saved.at("adapters").at(0).at("connectionName"), name);
    }
}

TEST(MachineFile, MissingMembersTakeSensibleValues) {
    const State state = ParseState(R"({"computerName": "PC1", "adapters": [
        {"index": 3, "dhcpEnabled": false, "dnsServers": ["192.0.2.1"]},
        {"index": 4, "dhcpEnabled": true, "dnsServers": ["192.0.2.1"], "gateways": ["192.0.2.2"]},
        {"index": 5, "dhcpEnabled": false, "gateways": ["fe80::1", "192.0.2.3", "192.0.2.4"]}],
        "routes": [{"destination": "0.0.0.0", "mask": "0.0.0.0", "nextHop": "192.0.2.4"}]})");
    EXPECT_EQ(state.hostName, "PC1");
    EXPECT_EQ(state.membership, Membership::OfWorkgroup("WORKGROUP"));
    EXPECT_TRUE(state.adapters[0].ipEnabled);
    EXPECT_EQ(state.adapters[0].caption, std::nullopt);
    EXPECT_EQ(state.adapters[0].staticDns, (TextList{"192.0.2.1"}));
    EXPECT_EQ(state.adapters[1].staticDns, TextList());
    EXPECT_EQ(state.routes, (std::vector<PersistedRoute>{{"0.0.0.0", "0.0.0.0", "192.0.2.3", -1},
                                                         {"0.0.0.0", "0.0.0.0", "192.0.2.4", 1}}))
        << "gateways set by hand are persistent routes";
}

std::string ErrorOf(const std::string& json) {
    return ErrorOf([&] { ParseState(json); });
}

TEST(MachineFile, ErrorsNameThePlaceAndWhatIsExpectedThere) {
    EXPECT_EQ(ErrorOf("[]"), "/: expected an object, found a list");
    EXPECT_EQ(ErrorOf(R"({"computerName": "A\u0000B"})"),
              R"(/computerName: expected text without a zero character, found "A\u0000B")");
    EXPECT_EQ(ErrorOf("{\n  \"computerName\": }").find("parse error at line 2, column 19"), 0U);
    const std::string whole = ": expected a whole number from 0 to 4294967295, found ";
    const std::pair<std::string, std::string> cases[] = {
        {R"("colour": "red")", "/colour: no such member"},
        {R"("computerName": "B")", "/computerName: the member stands twice in one object"},
        {R"("adapters": [{"index": 1, "ipAddress": ["300.1.1.1"], "ipSubnet": ["255.0.0.0"]}])",
         R"(/adapters/0/ipAddress/0: expected an IPv4 address, found "300.1.1.1")"},
        {R"("adapters": [{"index": 1, "ipAddress": ["64"], "ipSubnet": ["64"]}])",
         R"(/adapters/0/ipAddress/0: expected an IPv4 address, found "64")"},
        {R"("adapters": [{"index": 1, "ipAddress": ["0.0.0.0"], "ipSubnet": [""]}])", "none"},
        {R"("adapters": [{"index": 1, "ipAddress": ["10.1.1.1"], "ipSubnet": []}])",
         "/adapters/0/ipSubnet: 0 masks for 1 addresses"},
        {R"("adapters": [{"index": 1, "dhcpLease": {"ipSubnet": ["255.0.0.0"]}}])",
         "/adapters/0/dhcpLease/ipSubnet: 1 masks for 0 addresses"},
        {R"("dnsSuffixes": ["a", null])", "/dnsSuffixes/1: expected text, found null"},
        {R"("adapters": [{}])", R"(/adapters/0: the member "index" is missing)"},
        {R"("adapters": [{"index": 18446744073709551615}])",
         "/adapters/0/index" + whole + "18446744073709551615"},
        {R"("adapters": [{"index": 1}, {"index": 1}])",
         "/adapters/1/index: another adapter has the index 1"},
        {R"("adapters": [{"index": 1, "dhcpEnabled": "yes"}])",
         R"(/adapters/0/dhcpEnabled: expected true or false, found "yes")"},
        {R"("routes": [{"destination": "10.0.0.0", "mask": "255.0.0", "nextHop": "10.1.1.1"}])",
         R"(/routes/0/mask: expected an IPv4 address, found "255.0.0")"},
        {R"("membership": {"domain": "CORP"})",
         R"(/membership: a machine belongs to a "workgroup" or to a "domain" with )"
         R"(its "dnsDomain")"},
        {R"("hosts": {"a/b~c": ["x"]})",
         R"(/hosts/a~1b~0c/0: expected an IPv4 address, found "x")"},
        {R"("registry": {"K": {"V": true}})",
         R"(/registry/K/V: expected text, a number, or an object with "type" and "text" or )"
         R"("bytes", found true)"},
        {R"("registry": {"K": {"V": {"type": "REG_BINARY", "bytes": "0"}}})",
         R"(/registry/K/V/bytes: expected bytes such as "00 7F FF", found "0")"},
        {R"("registry": {"K": {}, "k": {}})",
         "/registry/k: the key stands twice: letter case does not count"},
        {R"("system": {"libCrypto": "broken"})",
         R"(/system/libCrypto: expected "present", "absent" or "withoutExport", found "broken")"},
        {R"("system": {"versions": {"staticOnStatic": 1}})",
         "/system/versions/staticOnStatic: expected 0 or 81, found 1"},
    };
    for (const auto& [member, message] : cases) {
        EXPECT_EQ(ErrorOf(R"({"computerName": "A", )" + member + "}"), message);
    }
}

using Json = nlohmann::ordered_json;

/// The places of all values below one.
std::vector<Json::json_pointer> Places(const Json& json,
                                       const Json::json_pointer& at = Json::json_pointer()) {
    std::vector<Json::json_pointer> places;
    if (!json.is_structured()) {
        return places;
    }
    for (const auto& [name, value] : json.items()) {
        places.push_back(json.is_array() ? at / std::stoul(name) : at / name);
        std::ranges::copy(Places(value, places.back()), std::back_inserter(places));
    }
    return places;
}

// Spoils every value of a machine file and leaves what the loader says of it beside this program,
// for check-machine-schema, which runs after it.
TEST(MachineFile, TheLoaderSaysOfEachSpoiltFileWhatTheSchemaSays) {
    State state = RichState();
    state.adapters.resize(1);
    state.domains.resize(1);
    state.domains[0].accounts.resize(1);
    state.domains[0].units.resize(1);
    state.domains[0].units[0].units.resize(1);
    state.routes.resize(1);
    Json whole = Json::parse(FormatState(state));
    whole["$schema"] = "machine-file.schema.json";
    Json verdicts = Json::array();
    const auto judge = [&](const Json& change) {
        const std::string error = ErrorOf(whole.patch(Json::array({change})).dump());
        // What members must agree on is no matter of shape.
        if (error.find(" masks for ") == std::string::npos) {
            verdicts.push_back({{"change", change}, {"error", error}});
        }
    };
    const Json values[] = {nullptr, -1, 4294967296, "text", "64", "1.2.3.256", Json::object()};
    for (const Json::json_pointer& place : Places(whole)) {
        for (const Json& value : values) {
            judge({{"op", "replace"}, {"path", place.to_string()}, {"value", value}});
        }
        if (whole[place.parent_pointer()].is_object()) {
            judge({{"op", "remove"}, {"path", place.to_string()}});
        }
        if (whole[place].is_object()) {
            const std::string extra = (place / "extra").to_string();
            judge({{"op", "add"}, {"path", extra}, {"value", true}});
        }
    }
    std::ofstream("machine-file-verdicts.json") << Json{{"whole", whole}, {"verdicts", verdicts}};
}

TEST(MachineFile, TheExamplesOfTheDocumentationLoad) {
    std::ifstream in(TOOLBOX_SOURCE_DIR "/docs/machine-files.md");
    int examples = 0;
    std::string json;
    bool inside = false;
    for (std::string line; std::getline(in, line);) {
        if (inside && line == "```") {
            ++examples;
            EXPECT_NO_THROW(ParseState(json)) << json;
            inside = false;
        } else if (inside) {
            json += line + "\n";
        } else if (line == "```json") {
            inside = true;
            json.clear();
        }
    }
    EXPECT_EQ(examples, 4);
}

}  // namespace
}  // namespace machine
