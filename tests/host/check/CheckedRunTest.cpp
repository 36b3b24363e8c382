#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <string>

#include "host/Module.h"
#include "machine/Simulation.h"
#include "tests/host/check/Checked.h"
#include "tests/host/check/RandomFile.h"

namespace {

using check_tests::Checked;
using check_tests::RandomFile;
using toolbox_tests::ScratchFile;

/// A machine outside any domain with an adapter for each section that a file may have, and with
/// routes of its own.
machine::State Machine() {
    machine::State state = machine::DefaultState();
    const machine::Adapter first = state.adapters.front();
    for (std::uint32_t index = 20; index < 24; ++index) {
        machine::Adapter adapter = first;
        adapter.index = index;
        adapter.settingId = "{6C7F1A52-90B4-4C1E-9D57-0A1B2C3D4E" + std::to_string(index) + "}";
        adapter.pnpDeviceId = "PCI\\VEN_8086&DEV_100E\\" + std::to_string(index);
        state.adapters.push_back(adapter);
    }
    state.routes = {{"10.77.0.0", "255.255.0.0", "192.0.2.1", 3},
                    {"10.78.0.0", "255.255.0.0", "192.0.2.1", 3}};
    return state;
}

/// The lines with which the module says that it has caught an error, while it runs the file, twice
/// with a restart between: what the first run has set must not trouble the second.
std::string ErrorsOf(const std::string& text) {
    std::string errors;
    const host::Module module(host::Module::DefaultPath());
    machine::Simulation simulation(Machine());
    simulation.Attach(static_cast<HMODULE>(module.Handle()));
    host::LogSink log([&errors](const host::LogLine& line) {
        if (line.text.find("caught") != std::string::npos) {
            errors += line.text + "\n";
        }
    });
    const std::string program = host::Module::DefaultPath();
    const std::string name = "checked-run.ini";
    for (int run = 0; run < 2; ++run) {
        const ScratchFile file(text, name);
        host::Message message("Internal", "Configure");
        message.Add("Filename", file.Path());
        EXPECT_EQ(module.Send(message, log), 1);
        simulation.Restart();
        // Put away beside this program, unless it waits for a restart.
        std::remove((program.substr(0, program.find_last_of("\\/") + 1) + name).c_str());
    }
    EXPECT_TRUE(simulation.Unexpected().empty());
    simulation.Detach(static_cast<HMODULE>(module.Handle()));
    return errors;
}

/// Whether it depends on a domain's controller how the file ends.
bool AsksForADomain(const std::string& text) {
    return text.find("Workgroup=False") != std::string::npos ||
           text.find("DomainUsername") != std::string::npos;
}

TEST(CheckedRun, AFileWithoutErrorsRunsWithoutAnError) {
    RandomFile files(4711);
    int good = 0;
    int failed = 0;
    while (good < 200) {
        const std::string text = files.Make();
        if (AsksForADomain(text)) {
            continue;
        }
        const bool hasErrors = Checked(text).Findings().Errors() > 0;
        if (hasErrors && failed >= 20) {
            continue;  // enough of these have run
        }
        const std::string errors = ErrorsOf(text);
        if (hasErrors) {
            failed += errors.empty() ? 0 : 1;
            continue;
        }
        ++good;
        EXPECT_EQ(errors, "") << text;
    }
    EXPECT_GE(failed, 20);  // errors that the check finds are the module's, too
}

}  // namespace
