// From the configuration to the list of commands, at many sizes. Times are per adapter or route:
// they stay level when nothing is looked at once for each of the others.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "common/config/Analyzer.h"
#include "common/config/ConfigBuilder.h"
#include "common/config/Event.h"
#include "common/config/command/SetStaticRoute.h"
#include "common/sys/nic/NicDiscovery.h"
#include "machine/native/Machine.h"
#include "tests/native/Machines.h"

namespace {

namespace Event = config::Event;

class NullLog : public logging::ILogSink {
public:
    void Log(std::uint32_t /*level*/, const char* /*format*/, ...) override {}
};

struct Sent {
    std::uint32_t kind;
    std::uint32_t type;
    std::string value;
};
using Events = std::vector<Sent>;

std::string Address(int number) {
    return "10." + std::to_string(number / 256) + "." + std::to_string(number % 256) + ".0";
}

Events Adapters(int count) {
    Events events;
    for (int i = 0; i < count; ++i) {
        events.insert(events.end(), {{Event::NIC, Event::BEGIN, "Adapter"},
                                     {Event::STATIC, Event::VALUE, {}},
                                     {Event::IP_INTERFACE, Event::BEGIN, {}},
                                     {Event::IP_ADDRESS, Event::VALUE, Address(i)},
                                     {Event::SUBNET_MASK, Event::VALUE, "255.255.255.0"},
                                     {Event::IP_INTERFACE, Event::END, {}},
                                     {Event::GATEWAY, Event::VALUE, "10.0.0.1"},
                                     {Event::DNS_SERVER, Event::VALUE, "10.0.0.2"},
                                     {Event::DNS_SERVER, Event::VALUE, "10.0.0.3"},
                                     {Event::DNS_SUFFIX, Event::VALUE, "corp.example"},
                                     {Event::NIC, Event::END, {}}});
    }
    return events;
}

Events Routes(int count) {
    Events events;
    for (int i = 0; i < count; ++i) {
        events.insert(events.end(), {{Event::STATIC_ROUTE, Event::BEGIN, {}},
                                     {Event::IP_ADDRESS, Event::VALUE, Address(i)},
                                     {Event::SUBNET_MASK, Event::VALUE, "255.255.255.0"},
                                     {Event::ROUTE_GATEWAY, Event::VALUE, "10.0.0.1"},
                                     {Event::ROUTE_METRIC, Event::VALUE, "1"},
                                     {Event::STATIC_ROUTE, Event::END, {}}});
    }
    return events;
}

/// The time of each round without what the simulated machine took of it.
template <class Round>
void Measure(benchmark::State& state, Round round) {
    using Seconds = std::chrono::duration<double>;
    native::Machine& machine = native::TheMachine();
    for (auto unused : state) {
        machine.trace.Clear();
        machine.timeInCalls = {};
        const auto started = std::chrono::steady_clock::now();
        round();
        const auto took = std::chrono::steady_clock::now() - started - machine.timeInCalls;
        state.SetIterationTime(Seconds(took).count());
    }
}

void EventsToCommands(benchmark::State& state, Events (*make)(int), int count) {
    const Events events = make(count);
    native::TheMachine().state.routes.clear();
    NullLog log;
    Measure(state, [&] {
        config::ConfigBuilder builder(log);
        for (const Sent& event : events) {
            builder.ConfigEvent(event.kind, event.type, event.value);
        }
        config::Analyze(builder);
        benchmark::DoNotOptimize(builder.Commands().size());
    });
}

/// As many routes on the machine as are wanted, in no order; half of them are the same.
void CompareRoutes(benchmark::State& state, int count) {
    std::vector<ipc::RouteKey> wanted;
    std::vector<machine::PersistedRoute> present;
    for (int i = 0; i < count; ++i) {
        const ipc::IPv4Address mask("255.255.255.0");
        const ipc::IPv4Address gateway("10.0.0.1");
        wanted.push_back({ipc::IPv4Address(Address(i)), mask, gateway, 1});
        present.push_back({Address(i), "255.255.255.0", "10.0.0.1", 1 + i % 2});
    }
    std::mt19937 random(1);
    std::ranges::shuffle(wanted, random);
    std::ranges::shuffle(present, random);
    native::TheMachine().state.routes = present;
    Measure(state, [&] {
        config::command::SetStaticRoute command;
        for (const ipc::RouteKey& route : wanted) {
            command.AddRoute(route);
        }
        benchmark::DoNotOptimize(command.IsNeeded());
    });
}

template <class Function, class... Arguments>
void Register(const std::string& group, const char* item, int count, Function function,
              Arguments... arguments) {
    const std::string name = group + "/" + std::to_string(count) + item;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        function(state, arguments..., count);
        state.counters["items"] = count;
    })->UseManualTime();
}

[[maybe_unused]] const bool kRegistered = [] {
    for (std::uint32_t i = 0; i < 64; ++i) {
        native::TheMachine().state.adapters.push_back(native::PciAdapter(i, static_cast<int>(i)));
    }
    sys::getNicList();
    for (const int count : {1, 8, 64}) {
        Register("events to commands", " adapters", count, EventsToCommands, Adapters);
    }
    for (const int count : {1, 10, 100, 1000, 10000}) {
        Register("events to commands, routes", " routes", count, EventsToCommands, Routes);
    }
    for (const int count : {1, 10, 100, 1000, 10000}) {
        Register("comparison of routes", " routes", count, CompareRoutes);
    }
    return true;
}();

}  // namespace
