#include <gtest/gtest.h>

#include <ctime>
#include <sstream>
#include <string>
#include <vector>

#include "common/config/command/SetStaticRoute.h"
#include "common/err/GeneralError.h"
#include "common/util/Strings.h"
#include "tests/native/OnMachine.h"

namespace {

using config::command::SetStaticRoute;
using native::OnMachine;

/// "10.0.0.0 255.0.0.0 10.1.1.1 5": destination, mask, gateway and metric of each route.
std::vector<machine::PersistedRoute> Routes(const std::string& text) {
    std::istringstream words(text);
    std::vector<machine::PersistedRoute> routes;
    machine::PersistedRoute route;
    while (words >> route.destination >> route.mask >> route.nextHop >> route.metric) {
        routes.push_back(route);
    }
    return routes;
}

void AddRoutes(SetStaticRoute& command, const std::vector<machine::PersistedRoute>& routes) {
    for (const machine::PersistedRoute& route : routes) {
        command.AddRoute({ipc::IPv4Address(route.destination), ipc::IPv4Address(route.mask),
                          ipc::IPv4Address(route.nextHop), route.metric});
    }
}

/// On a machine whose route program does nothing.
class StaticRoutes : public OnMachine {
protected:
    StaticRoutes() { machine.faults = machine::FaultPlan::Parse("route=0"); }
};

const std::string kA = "10.0.0.0 255.0.0.0 10.1.1.1 5 ";
const std::string kAddA = "route -p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5";
const std::string kDefault = "0.0.0.0 0.0.0.0 10.1.1.1 1 ";
const std::string kAddDefault = "route -p ADD 0.0.0.0 mask 0.0.0.0 10.1.1.1 METRIC 1";

TEST_F(StaticRoutes, BecomeThoseOfTheConfiguration) {
    struct RouteCase {
        const char* what;
        std::string machine;
        std::string wanted;
        std::string runs;
    };
    const RouteCase cases[] = {
        {"nothing", "", "", ""},
        {"the same", kA, kA, ""},
        {"the same in another order", kA + "9.0.0.0 255.0.0.0 1.1.1.1 1",
         "9.0.0.0 255.0.0.0 1.1.1.1 1 " + kA, ""},
        {"none wanted", "11.0.0.0 255.0.0.0 10.1.1.1 5 " + kA, "",
         "route DELETE 10.0.0.0; route DELETE 11.0.0.0"},
        {"another metric", kA, "10.0.0.0 255.0.0.0 10.1.1.1 6",
         "route DELETE 10.0.0.0; route -p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 6"},
        {"another gateway", kA, "10.0.0.0 255.0.0.0 10.1.1.2 5",
         "route DELETE 10.0.0.0; route -p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.2 METRIC 5"},
        {"another mask", kA, "10.0.0.0 255.255.0.0 10.1.1.1 5",
         "route DELETE 10.0.0.0; route -p ADD 10.0.0.0 mask 255.255.0.0 10.1.1.1 METRIC 5"},
        {"numeric order", "",
         "192.168.0.0 255.255.0.0 1.1.1.1 1 10.0.0.0 255.0.0.0 9.1.1.1 2 "
         "10.0.0.0 255.0.0.0 9.1.1.1 -1",
         "route -p ADD 10.0.0.0 mask 255.0.0.0 9.1.1.1 METRIC -1; "
         "route -p ADD 10.0.0.0 mask 255.0.0.0 9.1.1.1 METRIC 2; "
         "route -p ADD 192.168.0.0 mask 255.255.0.0 1.1.1.1 METRIC 1"},
        {"wanted twice, there once", kA, kA + kA, kAddA},
        {"wanted once, there twice", kA + kA, kA, "route DELETE 10.0.0.0"},
        {"the default route stays", kDefault, "", ""},
        {"the default route, wanted again", kDefault, kDefault, kAddDefault},
        {"the first default route in the machine's order", "0.0.0.0 0.0.0.0 10.1.1.9 1 " + kDefault,
         "", "route DELETE 0.0.0.0"},
        {"the second default route, wanted", "0.0.0.0 0.0.0.0 10.1.1.9 1 " + kDefault, kDefault,
         ""},
        {"a default route by half", "0.0.0.0 255.0.0.0 10.1.1.1 1", "", "route DELETE 0.0.0.0"},
    };
    for (const RouteCase& test : cases) {
        machine.state.routes = Routes(test.machine);
        SetStaticRoute command;
        AddRoutes(command, Routes(test.wanted));
        EXPECT_EQ(command.IsNeeded(), !test.runs.empty()) << test.what;
        EXPECT_EQ(command.GetDescription(), "");
        command.Execute();
        EXPECT_EQ(TakeActions(), test.runs) << test.what;
    }
}

TEST_F(StaticRoutes, AreComparedOnceUntilOneIsAdded) {
    SetStaticRoute command;
    AddRoutes(command, Routes(kA));
    EXPECT_TRUE(command.IsNeeded());
    machine.state.routes = Routes(kA);  // too late
    command.GetDescription();
    EXPECT_TRUE(command.IsNeeded());
    EXPECT_EQ(machine.trace.Count("ExecQuery"), 1U);
    AddRoutes(command, Routes("11.0.0.0 255.0.0.0 10.1.1.1 5"));
    command.Execute();
    EXPECT_EQ(TakeActions(), "route -p ADD 11.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5");

    machine.faults = machine::FaultPlan::Parse("ExecQuery");
    SetStaticRoute failing;
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(failing.IsNeeded(), sys::CWmiError);  // asks again
    }
}

TEST_F(StaticRoutes, CostOfComparingGrowsWithTheirNumberAndNotItsSquare) {
    const auto cost = [this](std::uint32_t count) {
        machine.state.routes.clear();
        SetStaticRoute command;
        for (std::uint32_t i = 0; i < count; ++i) {
            // Scattered.
            const ipc::IPv4Address destination(util::Format("10.%u.%u.0", i * 37 % 256, i / 256));
            command.AddRoute(
                {destination, ipc::IPv4Address("255.255.255.0"), ipc::IPv4Address("10.0.0.1"), 1});
            machine.state.routes.push_back(
                {destination.ToString(), "255.255.255.0", "10.0.0.1", 1});
        }
        const std::clock_t start = std::clock();
        EXPECT_FALSE(command.IsNeeded());
        return std::clock() - start;
    };
    const std::clock_t small = cost(2'000);
    EXPECT_LT(cost(20'000), small * 40);  // n log n gives 13, the square 100
}

}  // namespace
