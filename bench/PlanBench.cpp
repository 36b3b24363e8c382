// From the configuration to the list of commands, at many sizes. Times are per adapter or route:
// they stay level when nothing is looked at once for each of the others.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/config/Analyzer.h"
#include "common/config/ConfigBuilder.h"
#include "common/config/command/SetStaticRoute.h"
#include "common/sys/NicDiscovery.h"
#include "tests/native/FakeMachine.h"
#include "toolbox/config/ConfigurationFileEvents.h"

namespace {

class NullLog : public logging::ILogSink {
public:
    void Log(std::uint32_t /*level*/, const char* /*format*/, ...) override {}
};

struct Event {
    std::uint32_t kind;
    std::uint32_t type;
    std::string value;
};

std::string Text(const char* format, int number) {
    char text[200];
    const int length =
        std::snprintf(text, sizeof text, format, number / 256, number % 256, number % 90 + 1);
    return {text, static_cast<std::size_t>(length)};
}

std::string Adapters(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += "[NicEntry" + std::to_string(i) + "]\nDescription=Adapter\nDHCP=false\n" +
                Text("Address=10.%d.%d.%d\nNetmask=255.255.255.0\nGateway=10.0.0.1\n", i) +
                "DNS-Server-Count=2\nDNS-Server0=10.0.0.2\nDNS-Server1=10.0.0.3\n"
                "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=-1\n";
    }
    return text;
}

std::string Routes(int count) {
    std::string text =
        "[TCP/IP]\nDescription=Adapter\nDHCP=true\nDNS-Server-Count=0\n"
        "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=" +
        std::to_string(count) + "\n";
    for (int i = 0; i < count; ++i) {
        text += "Route" + std::to_string(i) + Text("=10.%d.%d.0,255.255.255.0,10.0.0.%d,,1,\n", i);
    }
    return text;
}

void Load(IniFile& file, const std::string& text) {
    const std::string path = "/dev/shm/plan-bench-" + std::to_string(getpid());
    std::ofstream(path, std::ios::binary) << text;
    const std::uint32_t result = file.Load(path, false);
    std::remove(path.c_str());
    if (result != IniFile::kSuccess) {
        throw std::runtime_error("cannot load " + path);
    }
}

ConfigurationFileEvents::Decrypt NoCipher() {
    return [](const std::string& enciphered, std::string& plain) { plain = enciphered; };
}

using Writer = std::string (*)(int);

void FileToEvents(benchmark::State& state, Writer write, int count) {
    IniFile file;
    Load(file, write(count));
    for (auto round : state) {
        std::size_t events = 0;
        ConfigurationFileEvents(
            file, [&events](auto, auto, const std::string& value) { events += value.size(); },
            NoCipher)
            .SendSections();
        benchmark::DoNotOptimize(events);
    }
}

void EventsToCommands(benchmark::State& state, Writer write, int count) {
    IniFile file;
    Load(file, write(count));
    std::vector<Event> events;
    ConfigurationFileEvents(
        file,
        [&events](auto kind, auto type, const std::string& value) {
            events.push_back({kind, type, value});
        },
        NoCipher)
        .SendSections();
    fake::TheMachine().routes.clear();
    NullLog log;
    for (auto round : state) {
        config::ConfigBuilder builder(log);
        for (const Event& event : events) {
            builder.ConfigEvent(event.kind, event.type, event.value);
        }
        config::Analyze(builder);
        benchmark::DoNotOptimize(builder.Commands().size());
        fake::TheMachine().queries.clear();
    }
}

/// As many routes on the machine as are wanted, in no order; half of them are the same.
void CompareRoutes(benchmark::State& state, int count) {
    std::vector<ipc::RouteKey> wanted;
    std::vector<sys::RouteRecord> present;
    for (int i = 0; i < count; ++i) {
        const ipc::IPv4Address destination(Text("10.%d.%d.0", i));
        const ipc::IPv4Address mask("255.255.255.0");
        const ipc::IPv4Address gateway("10.0.0.1");
        wanted.push_back({destination, mask, gateway, 1});
        present.push_back({destination, mask, gateway, static_cast<std::uint32_t>(1 + i % 2)});
    }
    std::mt19937 random(1);
    std::shuffle(wanted.begin(), wanted.end(), random);
    std::shuffle(present.begin(), present.end(), random);
    fake::TheMachine().routes = present;
    for (auto round : state) {
        config::command::SetStaticRoute command;
        for (const ipc::RouteKey& route : wanted) {
            command.AddRoute(route);
        }
        benchmark::DoNotOptimize(command.IsNeeded());
        fake::TheMachine().queries.clear();
    }
}

template <class Function, class... Arguments>
void Register(const std::string& group, const char* item, int count, Function function,
              Arguments... arguments) {
    const std::string name = group + "/" + std::to_string(count) + item;
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        function(state, arguments..., count);
        state.counters["items"] = count;
    });
}

[[maybe_unused]] const bool registered = [] {
    for (std::uint32_t i = 0; i < 64; ++i) {
        fake::TheMachine().adapters.push_back(fake::PciAdapter(i, static_cast<int>(i)));
    }
    sys::getNicList();
    for (const int count : {1, 8, 64}) {
        Register("file to events", " adapters", count, FileToEvents, Adapters);
    }
    for (const int count : {1, 8, 64}) {
        Register("events to commands", " adapters", count, EventsToCommands, Adapters);
    }
    for (const int count : {1, 100, 10000}) {
        Register("file to events, routes", " routes", count, FileToEvents, Routes);
    }
    for (const int count : {1, 100, 10000}) {
        Register("events to commands, routes", " routes", count, EventsToCommands, Routes);
    }
    for (const int count : {1, 100, 10000}) {
        Register("comparison of routes", " routes", count, CompareRoutes);
    }
    return true;
}();

}  // namespace
