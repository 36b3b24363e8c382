// One "Configure" message to the shipped module on a simulated machine, and all that can be seen of
// it from outside.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/Module.h"
#include "machine/Simulation.h"
#include "machine/Trace.h"
#include "tests/support/ScratchFolder.h"

namespace requests {

/// The folders of an agent: its program's, where files are put away, and the one that it takes
/// configuration files from. Empty at first.
class AgentFolder {
public:
    AgentFolder();

    std::string Program() const { return (Home() / "agent.exe").string(); }
    std::filesystem::path Inbox() const { return root_.Path() / "inbox"; }
    std::filesystem::path Home() const { return root_.Path() / "agent"; }

private:
    support::ScratchFolder root_;
};

struct RunResult {
    std::int32_t result = 0;                   ///< what DoMagic returned
    std::string escaped;                       ///< what passed on to the host instead, if anything
    std::map<std::string, std::string> reply;  ///< the fields that the module wrote
    std::vector<std::string> log;              ///< "0 text": level and finished line
    std::vector<std::string> errors;           ///< what was thrown inside, as ThrownErrors has it
    std::vector<machine::TraceEntry> calls;    ///< the platform calls
    std::vector<std::string> unexpected;       ///< what the simulated machine could not serve
    std::size_t comBlocks = 0;                 ///< COM memory not given back
};

/// config.dll from beside this program, loaded and attached to the machine.
class AttachedModule {
public:
    explicit AttachedModule(machine::Simulation& simulation);
    ~AttachedModule();
    AttachedModule(const AttachedModule&) = delete;
    AttachedModule& operator=(const AttachedModule&) = delete;

    HMODULE Image() const;
    /// Sends the message for the file. The host's sink throws at the first line that holds
    /// `hostThrowsAt`; empty: it never throws.
    RunResult Configure(const std::string& file, const std::string& hostThrowsAt = {});

private:
    machine::Simulation& simulation_;
    host::Module module_;
};

/// The same in a process of its own: the module is loaded for this message and unloaded after it.
RunResult RunConfigure(machine::Simulation& simulation, const std::string& file);

/// The first line of the run that holds one of the machine's passwords, clear or enciphered: log,
/// reply, errors and recorded calls are searched. Empty when there is none.
std::string FindSecret(const RunResult& run, const machine::State& state);

}  // namespace requests
