#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "machine/FaultPlan.h"
#include "machine/State.h"
#include "machine/Trace.h"

/// The simulated machine in native programs: the module's platform functions (WMI, the domain, the
/// registry, child processes and so on) answer from its state and change it by its rules, and their
/// calls are recorded and made to fail as on Windows.
namespace native {

struct Machine {
    machine::State state;
    machine::FaultPlan faults;
    machine::Trace trace;
    std::set<std::string> files;  ///< paths that count as existing files
    int loadedLibraries = 0;
    std::string lastPassword;  ///< that a method or the directory was given
    std::uint64_t clock = 0;   ///< milliseconds
    /// Real time that was spent in the functions themselves.
    std::chrono::nanoseconds timeInCalls{};

    /// On the clock, and for what waits for its time.
    void PassTime(std::uint64_t milliseconds);
};

/// The one machine of the process.
Machine& TheMachine();

/// A new machine. (The adapter tree that the module keeps for the life of the process stays.)
Machine& Reset(machine::State state);

/// For the platform functions: one call, recorded when it is made.
class Call {
public:
    Call(std::string_view function, machine::CallArguments arguments);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    /// The code to fail with when the fault plan wants this call to fail.
    std::optional<std::uint32_t> Fault();
    /// The same for the method or program that the call reaches.
    std::optional<std::uint32_t> Outcome(std::string_view name);
    void AddArgument(const std::string& name, const std::string& value);

private:
    machine::TraceEntry& Entry() const { return TheMachine().trace.At(position_); }

    std::chrono::steady_clock::time_point started_;
    std::size_t position_;
};

}  // namespace native
