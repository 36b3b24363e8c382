#include "tests/host/configure/Support.h"

#include <gtest/gtest.h>

namespace configure_tests {

Arguments With(Arguments arguments, const Arguments& more) {
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

host_tests::Outcome Configure(const Arguments& arguments) {
    return host_tests::RunHost(With({"configure"}, arguments));
}

Json ConfigureJson(const Arguments& arguments, unsigned long exitCode) {
    const host_tests::Outcome outcome = Configure(With(arguments, {"--format", "json"}));
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.data << outcome.notes;
    EXPECT_TRUE(Json::accept(outcome.data)) << outcome.data << outcome.notes;
    return Json::parse(outcome.data, nullptr, false);
}

Json SettingOf(const Json& pass, const std::string& kind) {
    for (const Json& setting : pass.at("settings")) {
        if (setting.at("setting") == kind) {
            return setting;
        }
    }
    return nullptr;
}

}  // namespace configure_tests
