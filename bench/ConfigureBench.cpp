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

void Measure(const std::vector<int>& sizes) {
    std::vector<bench::Measurement> perAdapter;
    for (const int size : sizes) {
        const std::string name = std::to_string(size);
        const machine::State state = machine::LoadState(name + ".json");
        std::vector<double> own;
        std::vector<double> inCalls;
        const std::size_t calls = Configure(state, name + ".ini").calls;
        for (int repetition = 0; repetition < 15; ++repetition) {
            const Times times = Configure(state, name + ".ini");
            own.push_back(times.own);
            inCalls.push_back(times.inCalls);
        }
        bench::Print({"Configure, " + name + " adapters", "the module itself", own});
        bench::Print({"Configure, " + name + " adapters",
                      std::to_string(calls) + " simulated calls", inCalls});
        perAdapter.push_back(
            {"Configure itself, per adapter", name + " adapters", own, static_cast<double>(size)});
    }
    for (const bench::Measurement& measurement : perAdapter) {
        bench::Print(measurement);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 2) {
            throw std::runtime_error("usage: configure_bench FOLDER");
        }
        std::filesystem::current_path(argv[1]);
        Measure({1, 8, 64});
        return 0;
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
        return 1;
    }
}
