// What the module executed, read from its log and from the platform calls between the lines.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/configure/RunOnce.h"

namespace host::configure {

/// A call that changes the machine: a WMI method, a move in the directory, a "route" command line.
struct ChangingCall {
    std::string name;  ///< "EnableStatic", "MoveHere", "route DELETE 10.0.0.0"
    bool onAdapter = false;
    bool reached = true;      ///< the call itself worked; its outcome is `value`
    std::uint32_t value = 0;  ///< ReturnValue, HRESULT or exit code, where it is known
    std::string result;       ///< the result as the trace names it, where the call did not work
    std::string parameters;   ///< of a method; secrets masked
    bool Succeeded() const { return reached && value <= 1; }
};

/// One command that the module began to execute.
struct Step {
    std::string command;  ///< "SetDns"; "ConfigureNic" for an adapter's section as a whole
    std::string description;
    /// Which ConfigureNic of the run it belongs to, for an adapter's commands.
    std::optional<std::size_t> nic;
    std::optional<std::uint32_t> index;  ///< the adapter's WMI index
    std::vector<ChangingCall> calls;     ///< empty on a real machine
    /// What its setting was just before; none on a real machine.
    std::optional<std::vector<std::string>> before;
    bool failed = false;
};

enum class Stage { kReading, kAnalysing, kRunning, kPuttingAway };

/// What stopped the run.
struct Failure {
    Stage stage = Stage::kReading;
    std::optional<std::size_t> step;  ///< the step that failed
    /// The steps all worked, and a present setting could not be read after the last of them.
    bool afterLastStep = false;
    bool configurationRefused = false;   ///< the configuration itself is at fault
    std::optional<std::int32_t> status;  ///< "Status-Code" of the reply
    /// What the failing method, program or call gave, or else the status again.
    std::int64_t code = 0;
    std::string text;  ///< what the code means
    /// The failing platform call, where it is known: "RegOpenKeyExA HKEY_LOCAL_MACHINE\...: error
    /// 5"
    std::string call;
    std::optional<std::uint32_t> adapter;  ///< the WMI index of the adapter that the call concerns
};

/// Why it failed, with the code: "IP is not enabled on the adapter (84)".
std::string FailureText(const Failure& failure);

struct Story {
    std::vector<Step> steps;
    std::optional<Failure> failure;
    bool stoppedForRestart = false;  ///< the run stopped at a restart marker
    bool completed = false;          ///< every command of the list was passed
    bool fileKept = false;           ///< the module left the file where it was
};

Story ReadStory(const Run& run);

}  // namespace host::configure
