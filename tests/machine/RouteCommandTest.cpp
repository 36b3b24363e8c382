#include "machine/route/RouteCommand.h"

#include <gtest/gtest.h>

#include "machine/Text.h"

namespace machine {
namespace {

const std::vector<PersistedRoute> present = {{"10.20.0.0", "255.255.0.0", "192.0.2.1", 5},
                                             {"10.20.0.0", "255.255.0.0", "192.0.2.2", 6},
                                             {"10.30.0.0", "255.255.0.0", "192.0.2.1", 1}};

TEST(RouteCommand, AddsAndDeletesOrFails) {
    struct Case {
        const char* commandLine;
        int exitCode;
        const char* change;
    };
    const Case cases[] = {
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5", 0,
         "add 10.0.0.0 255.0.0.0 10.1.1.1 5"},
        {"-p add 10.9.9.9 10.1.1.1", 0, "add 10.9.9.9 255.255.255.255 10.1.1.1 1"},
        {"ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5", 0, "none"},
        {"-p ADD 10.20.0.0 mask 255.255.0.0 192.0.2.1 METRIC 9", 1, "none"},
        {"-p ADD 10.20.0.0 mask 255.255.0.0 192.0.2.9 METRIC 9", 0,
         "add 10.20.0.0 255.255.0.0 192.0.2.9 9"},
        {"-p ADD 10.0.0.1 mask 255.0.0.0 10.1.1.1", 1, "none"},
        {"-p ADD 10.0.0.0 mask 255.0.255.0 10.1.1.1", 1, "none"},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 gateway", 1, "none"},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 0", 1, "none"},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 10000", 1, "none"},
        {"-p ADD 10.0.0.0", 1, "none"},
        {"DELETE 10.20.0.0", 0, "delete 10.20.0.0"},
        {"DELETE", 1, "none"},
        {"CHANGE 10.20.0.0", 1, "none"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.commandLine);
        const RouteOutcome outcome = RunRoute(Split(one.commandLine, ' '), present);
        EXPECT_EQ(outcome.exitCode, one.exitCode);
        EXPECT_EQ(FormatChange(outcome.change), one.change);
        EXPECT_EQ(ParseChange(FormatChange(outcome.change)), outcome.change);
        EXPECT_FALSE(outcome.output.empty());
    }
}

TEST(RouteCommand, ADeletionTakesEveryRouteToTheDestination) {
    std::vector<PersistedRoute> routes = present;
    ApplyChange(routes, ParseChange("delete 10.20.0.0"));
    EXPECT_EQ(routes, (std::vector<PersistedRoute>{present[2]}));
    for (const char* nonsense : {"", "none", "add", "add 1 2 3", "add 1 2 3 x", "drop 10.0.0.0"}) {
        ApplyChange(routes, ParseChange(nonsense));
    }
    EXPECT_EQ(routes.size(), 1U);
}

}  // namespace
}  // namespace machine
