#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "common/config/command/SetStaticRoute.h"
#include "common/err/GeneralError.h"
#include "tests/native/CommandText.h"
#include "tests/native/OnMachine.h"

namespace {

int comparisons = 0;

}  // namespace

// The linker sends every comparison of two routes here (--wrap), and gives the names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" bool __real__ZN3ipcltERKNS_8RouteKeyES2_(const ipc::RouteKey& left,
                                                    const ipc::RouteKey& right);
extern "C" bool __wrap__ZN3ipcltERKNS_8RouteKeyES2_(const ipc::RouteKey& left,
                                                    const ipc::RouteKey& right) {
    ++comparisons;
    return __real__ZN3ipcltERKNS_8RouteKeyES2_(left, right);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using config::command::SetStaticRoute;
using fake::OnMachine;

/// "10.0.0.0 255.0.0.0 10.1.1.1 5": destination, mask, gateway and metric of each route.
std::vector<sys::RouteRecord> Routes(const std::string& text) {
    std::istringstream words(text);
    std::vector<sys::RouteRecord> routes;
    std::string destination;
    std::string mask;
    std::string gateway;
    std::int32_t metric = 0;
    while (words >> destination >> mask >> gateway >> metric) {
        routes.push_back(
            fake::Route(destination, mask, gateway, static_cast<std::uint32_t>(metric)));
    }
    return routes;
}

void AddRoutes(SetStaticRoute& command, const std::vector<sys::RouteRecord>& routes) {
    for (const sys::RouteRecord& route : routes) {
        command.AddRoute({route.destination, route.mask, route.nextHop,
                          static_cast<std::int32_t>(route.metric)});
    }
}

class StaticRoutes : public OnMachine {
protected:
    /// The arguments of the route program's runs.
    std::string TakeRuns() {
        std::string runs;
        for (const std::string& change : machine.changes) {
            const std::string start = "RunCommand(route ";
            EXPECT_TRUE(change.starts_with(start)) << change;
            runs += (runs.empty() ? "" : "; ") +
                    change.substr(start.size(), change.size() - start.size() - 1);
        }
        machine.changes.clear();
        return runs;
    }
};

const std::string kA = "10.0.0.0 255.0.0.0 10.1.1.1 5 ";
const std::string kAddA = "-p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5";
const std::string kDefault = "0.0.0.0 0.0.0.0 10.1.1.1 1 ";
const std::string kAddDefault = "-p ADD 0.0.0.0 mask 0.0.0.0 10.1.1.1 METRIC 1";

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
         "DELETE 10.0.0.0; DELETE 11.0.0.0"},
        {"another metric", kA, "10.0.0.0 255.0.0.0 10.1.1.1 6",
         "DELETE 10.0.0.0; -p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 6"},
        {"another gateway", kA, "10.0.0.0 255.0.0.0 10.1.1.2 5",
         "DELETE 10.0.0.0; -p ADD 10.0.0.0 mask 255.0.0.0 10.1.1.2 METRIC 5"},
        {"another mask", kA, "10.0.0.0 255.255.0.0 10.1.1.1 5",
         "DELETE 10.0.0.0; -p ADD 10.0.0.0 mask 255.255.0.0 10.1.1.1 METRIC 5"},
        {"numeric order", "",
         "192.168.0.0 255.255.0.0 1.1.1.1 1 10.0.0.0 255.0.0.0 9.1.1.1 2 "
         "10.0.0.0 255.0.0.0 9.1.1.1 -1",
         "-p ADD 10.0.0.0 mask 255.0.0.0 9.1.1.1 METRIC -1; "
         "-p ADD 10.0.0.0 mask 255.0.0.0 9.1.1.1 METRIC 2; "
         "-p ADD 192.168.0.0 mask 255.255.0.0 1.1.1.1 METRIC 1"},
        {"wanted twice, there once", kA, kA + kA, kAddA},
        {"wanted once, there twice", kA + kA, kA, "DELETE 10.0.0.0"},
        {"the default route stays", kDefault, "", ""},
        {"the default route, wanted again", kDefault, kDefault, kAddDefault},
        {"the first default route in the machine's order", "0.0.0.0 0.0.0.0 10.1.1.9 1 " + kDefault,
         "", "DELETE 0.0.0.0"},
        {"the second default route, wanted", "0.0.0.0 0.0.0.0 10.1.1.9 1 " + kDefault, kDefault,
         ""},
        {"a default route by half", "0.0.0.0 255.0.0.0 10.1.1.1 1", "", "DELETE 0.0.0.0"},
    };
    for (const RouteCase& test : cases) {
        machine.routes = Routes(test.machine);
        SetStaticRoute command;
        AddRoutes(command, Routes(test.wanted));
        EXPECT_EQ(command.IsNeeded(), !test.runs.empty()) << test.what;
        EXPECT_EQ(command.GetDescription(), "");
        command.Execute();
        EXPECT_EQ(TakeRuns(), test.runs) << test.what;
    }
}

TEST_F(StaticRoutes, AreComparedOnceUntilOneIsAdded) {
    SetStaticRoute command;
    AddRoutes(command, Routes(kA));
    EXPECT_TRUE(command.IsNeeded());
    machine.routes = Routes(kA);  // too late
    command.GetDescription();
    EXPECT_TRUE(command.IsNeeded());
    EXPECT_EQ(machine.queries, std::vector<std::string>{"getStaticRoutes()"});
    AddRoutes(command, Routes("11.0.0.0 255.0.0.0 10.1.1.1 5"));
    command.Execute();
    EXPECT_EQ(TakeRuns(), "-p ADD 11.0.0.0 mask 255.0.0.0 10.1.1.1 METRIC 5");

    machine.onCall["getStaticRoutes"] = [] {
        throw sys::CWmiError("Wmi query failed to get static routes", 1037, -2, 0);
    };
    SetStaticRoute failing;
    for (int i = 0; i < 2; ++i) {
        EXPECT_THROW(failing.IsNeeded(), sys::CWmiError);  // asks again
    }
}

TEST_F(StaticRoutes, StopAtTheFirstRunThatFails) {
    struct FailureCase {
        std::size_t failingRun;
        std::string error;
        std::string runs;
    };
    const FailureCase cases[] = {
        {2, "SetStaticRoute:149(5) Failed to delete static route",
         "DELETE 1.0.0.0; DELETE 2.0.0.0"},
        {3, "SetStaticRoute:151(5) Failed to add static route",
         "DELETE 1.0.0.0; DELETE 2.0.0.0; " + kAddA},
    };
    machine.routes = Routes("2.0.0.0 255.0.0.0 1.1.1.1 1 1.0.0.0 255.0.0.0 1.1.1.1 1");
    for (const FailureCase& test : cases) {
        machine.onCall["RunCommand"] = [&] {
            machine.returns["RunCommand"] =
                machine.changes.size() == test.failingRun ? 0xFFFFFFFFU : 0;
        };
        SetStaticRoute command;
        AddRoutes(command, Routes(kA + "12.0.0.0 255.0.0.0 1.1.1.1 1"));
        try {
            command.Execute();
            ADD_FAILURE() << "run " << test.failingRun << " did not fail";
        } catch (const config::ConfigError& error) {
            EXPECT_EQ(fake::ErrorText(), test.error);
            EXPECT_EQ(error.Value(), -1);
        }
        EXPECT_EQ(TakeRuns(), test.runs);
    }
}

TEST_F(StaticRoutes, CostOfComparingGrowsWithTheirNumberAndNotItsSquare) {
    const auto cost = [this](std::uint32_t count) {
        machine.routes.clear();
        SetStaticRoute command;
        for (std::uint32_t i = 0; i < count; ++i) {
            // Scattered, half of them alike on both sides.
            const ipc::IPv4Address destination(util::Format("10.%u.%u.0", i * 37 % 256, i / 256));
            const ipc::IPv4Address mask("255.255.255.0");
            const ipc::IPv4Address gateway("10.0.0.1");
            command.AddRoute({destination, mask, gateway, 1});
            machine.routes.push_back({destination, mask, gateway, 1 + i % 2});
        }
        comparisons = 0;
        command.Execute();
        EXPECT_EQ(machine.changes.size(), count);
        machine.changes.clear();
        return comparisons;
    };
    const int small = cost(1000);
    EXPECT_GT(small, 1000);
    EXPECT_LT(cost(10000), small * 15);  // n log n gives 13.3
}

}  // namespace
