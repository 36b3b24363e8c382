#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/host/configure/Support.h"

namespace {

using namespace configure_tests;
using testing::Contains;
using testing::ElementsAreArray;

struct Example {
    std::string name;
    std::vector<std::string> changesByPass;  // settings changed, pass by pass, blank-separated
    std::string lastChange;  // something that the machine has to show for it: "where|what|after"
};

std::ostream& operator<<(std::ostream& out, const Example& example) {
    return out << example.name;
}

std::string Path(const Example& example, const char* ending) {
    return TOOLBOX_SOURCE_DIR "/examples/" + example.name + ending;
}

std::string ChangedSettings(const Json& pass) {
    std::string changed;
    for (const Json& setting : pass.at("settings")) {
        if (setting.at("fate") == "change") {
            changed += (changed.empty() ? "" : " ") + setting.at("setting").get<std::string>();
        }
    }
    return changed;
}

std::vector<std::string> ChangesOf(const Json& result) {
    std::vector<std::string> changes;
    for (const Json& pass : result.at("passes")) {
        for (const char* list : {"changes", "madeEffectiveByRestart"}) {
            for (const Json& change : pass.at(list)) {
                changes.push_back(change.at("where").get<std::string>() + "|" +
                                  change.value("what", "") + "|" +
                                  change.at("after").get<std::string>());
            }
        }
    }
    return changes;
}

class Examples : public testing::TestWithParam<Example> {};

TEST_P(Examples, PlanAndRunSayTheSameAndSettle) {
    const Files files;
    const std::string file = Path(GetParam(), ".ini");
    const std::string before = ReadFile(file);
    const Arguments arguments = {file, "--machine", Path(GetParam(), ".json")};
    const Json plan = ConfigureJson(With(arguments, {"--plan"}), 2);
    EXPECT_EQ(plan, ConfigureJson(arguments, GetParam().changesByPass.size() > 1 ? 3U : 0U));
    EXPECT_EQ(ReadFile(file), before);

    const Json result = ConfigureJson(
        With(arguments, {"--until-done", "--save-machine", "settled.json", "--with-passwords"}), 0);
    EXPECT_EQ(result.at("settled"), true);
    EXPECT_TRUE(result.at("violations").empty()) << result.at("violations");
    std::vector<std::string> changed;
    for (const Json& pass : result.at("passes")) {
        changed.push_back(ChangedSettings(pass));
    }
    EXPECT_THAT(changed, ElementsAreArray(GetParam().changesByPass));
    EXPECT_THAT(ChangesOf(result), Contains(GetParam().lastChange));

    // A run for each restart leaves the same machine.
    Arguments step = {file, "--machine", Path(GetParam(), ".json")};
    for (std::size_t left = changed.size(); left-- > 0;) {
        ConfigureJson(With(step, {"--save-machine", "stepped.json", "--with-passwords"}),
                      left == 0 ? 0U : 3U);
        step = {file, "--machine", "stepped.json", "--after-restart"};
    }
    EXPECT_EQ(ReadFile("stepped.json"), ReadFile("settled.json"));

    const Json again = ConfigureJson({file, "--machine", "settled.json", "--plan"}, 0);
    EXPECT_EQ(ChangedSettings(again.at("passes").at(0)), "");
    EXPECT_TRUE(again.at("passes").at(0).at("changes").empty());
}

TEST_P(Examples, WhatInitWritesChangesNothing) {
    const Files files;
    const std::string machine = Path(GetParam(), ".json");
    EXPECT_EQ(host_tests::RunHost({"init", "--machine", machine, "-o", "it.ini"}).data,
              "wrote it.ini\n");
    EXPECT_EQ(ReadFile("it.ini"), host_tests::RunHost({"init", "--machine", machine}).data);
    const Json plan = ConfigureJson({"it.ini", "--machine", machine, "--plan"}, 0);
    EXPECT_EQ(plan.at("passes").at(0).at("counts").at("changes"), 0);
}

INSTANTIATE_TEST_SUITE_P(
    All, Examples,
    testing::Values(
        Example{"static-workstation",
                {"addresses gateways dns-servers dns-suffixes"},
                "machine|DNS suffixes|corp.example, example"},
        Example{"dhcp-laptop",
                {"dhcp dns-suffixes routes"},
                "PCI 2/1/0 \"Ethernet\" (index 1)|DHCP|on"},
        Example{"two-adapter-server",
                {"addresses gateways dns-servers dhcp dns-servers routes"},
                "routes||10.30.0.0 mask 255.255.0.0 via 203.0.113.101 metric 10"},
        Example{"domain-join",
                {"computer-name", "domain unit", ""},
                "domain corp.example|computer object|SALES-7 in East/Sales"},
        Example{"workgroup-move", {"workgroup", ""}, "machine|membership|workgroup WORKSHOP"},
        Example{
            "ou-move", {"unit"}, "domain corp.example|computer object|SALES-3 in West/Support"}),
    [](const testing::TestParamInfo<Example>& example) {
        std::string name = example.param.name;
        std::erase(name, '-');
        return name;
    });

}  // namespace
