#include "machine/route/RouteCommand.h"

#include <gtest/gtest.h>

#include "machine/Text.h"

namespace machine {
namespace {

const std::vector<PersistedRoute> kPresent = {{"10.20.0.0", "255.255.0.0", "192.0.2.1", 5},
                                              {"10.20.0.0", "255.255.0.0", "192.0.2.2", 6},
                                              {"10.30.0.0", "255.255.0.0", "192.0.2.1", 1}};

TEST(RouteCommand, AddsAndDeletesOrFails) {
    struct Case {
        const char* commandLine;
        int exitCode;
        std::vector<PersistedRoute> added;
        std::vector<PersistedRoute> kept = kPresent;
    };
    const Case cases[] = {
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5",
         0,
         {{"10.0.0.0", "255.0.0.0", "10.1.1.1", 5}}},
        {"-p add 10.9.9.9 10.1.1.1", 0, {{"10.9.9.9", "255.255.255.255", "10.1.1.1", 1}}},
        {"ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5", 0, {}},
        {"-p ADD 10.20.0.0 mask 255.255.0.0 192.0.2.1 METRIC 9", 1, {}},
        {"-p ADD 010.20.0.0 mask 255.255.0.0 192.0.2.1 METRIC 9", 1, {}},
        {"-p ADD 10.20.0.0 mask 255.255.0.0 192.0.2.9 METRIC 9",
         0,
         {{"10.20.0.0", "255.255.0.0", "192.0.2.9", 9}}},
        {"-p ADD 10.0.0.1 mask 255.0.0.0 10.1.1.1", 1, {}},
        {"-p ADD 10.0.0.0 mask 255.0.255.0 10.1.1.1", 1, {}},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 gateway", 1, {}},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 0", 1, {}},
        {"-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 10000", 1, {}},
        {"-p ADD 10.0.0.0", 1, {}},
        {"DELETE 10.20.0.0", 0, {}, {kPresent[2]}},
        {"DELETE 10.40.0.0", 1, {}},
        {"DELETE", 1, {}},
        {"CHANGE 10.20.0.0", 1, {}},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.commandLine);
        State state;
        state.routes = kPresent;
        state.system.versions.refusedRoute = 1;
        const RouteOutcome outcome = RunRoute(Split(one.commandLine, ' '), state);
        EXPECT_EQ(outcome.exitCode, one.exitCode);
        EXPECT_FALSE(outcome.output.empty());
        std::vector<PersistedRoute> expected = one.kept;
        expected.insert(expected.end(), one.added.begin(), one.added.end());
        EXPECT_EQ(state.routes, expected);
    }
}

}  // namespace
}  // namespace machine
