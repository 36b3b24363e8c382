// Whole requests to the module on simulated machines: what they take outside the simulated calls.
// The machines and configurations are those of program_bench.
//
//     configure_bench FOLDER

#include <windows.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Table.h"
#include "host/Message.h"
#include "host/Module.h"
#include "machine/MachineFile.h"
#include "machine/Simulation.h"

namespace {

class NullLog : public IHostLogSink {
public:
    void Log(std::uint32_t /*level*/, const char* /*format*/, ...) override {}
};

struct Times {
    double own;
    double inCalls;
    std::size_t calls;
};

/// One request to a freshly loaded module.
Times Configure(const machine::State& state, const std::string& configuration) {
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;
    machine::Simulation simulation(state);
    const std::filesystem::path presented = std::filesystem::absolute("presented.ini");
    std::filesystem::create_directory("put-away");
    std::filesystem::remove("put-away/presented.ini");
    std::filesystem::copy_file(configuration, presented,
                               std::filesystem::copy_options::overwrite_existing);
    simulation.SetProgramFile(std::filesystem::absolute("put-away/agent.exe").string());
    const host::Module module(host::Module::DefaultPath());
    const auto image = static_cast<HMODULE>(module.Handle());
    // The function's address by way of an integer: a function is no FARPROC to the compiler.
    const auto getApi = reinterpret_cast<const ToolboxAPI* (*)()>(
        reinterpret_cast<std::uintptr_t>(GetProcAddress(image, "GetToolboxAPI")));
    simulation.Attach(image);
    host::Message message("Internal", "Configure");
    message.Add("Filename", presented.string());
    NullLog log;
    const Clock::time_point start = Clock::now();
    getApi()->DoMagic(&message, &log);
    const Seconds took = Clock::now() - start;
    simulation.Detach(image);
    if (message.ReplyText("Result") != "Success") {
        throw std::runtime_error(configuration + ": " + message.ReplyText("Result"));
    }
    const Seconds inCalls = simulation.TimeInCalls();
    return {(took - inCalls).count(), inCalls.count(), simulation.GetTrace().Size()};
}

struct Machine {
    std::string name;
    machine::State state;
    std::size_t calls = 0;
    bench::Measurement own;
    bench::Measurement inCalls;
};

void Measure() {
    std::vector<Machine> machines;
    for (const char* const size : {"1", "8", "64"}) {
        machines.push_back({size, machine::LoadState(std::string(size) + ".json"), 0, {}, {}});
    }
    for (int repetition = 0; repetition < 25; ++repetition) {
        for (Machine& each : machines) {
            const Times times = Configure(each.state, each.name + ".ini");
            each.calls = times.calls;
            each.own.seconds.push_back(times.own);
            each.inCalls.seconds.push_back(times.inCalls);
        }
    }
    for (Machine& each : machines) {
        each.own.group = each.inCalls.group = "Configure, " + each.name + " adapters";
        each.own.subject = "the module itself";
        each.inCalls.subject = std::to_string(each.calls) + " simulated calls";
        bench::Print(each.own);
        bench::Print(each.inCalls);
    }
    for (Machine& each : machines) {
        bench::Print({"Configure itself, per adapter", each.name + " adapters", each.own.seconds,
                      std::stod(each.name)});
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) {
            throw std::runtime_error("usage: configure_bench FOLDER");
        }
        std::filesystem::current_path(argv[1]);
        Measure();
        return 0;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
