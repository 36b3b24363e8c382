#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/sys/simulated/Machine.h"

namespace sys_tests {

/// The first call that the fault plan made to fail.
struct Fault {
    std::string function;
    std::uint64_t ordinal = 0;  // among the calls of that function, from 1
    bool stays = false;         // every later call fails as well
    std::uint32_t code = 0;

    bool Is(std::string_view name) const { return function == name; }
};

/// One operation that met a fault.
struct FaultyRun {
    Fault fault;
    Outcome outcome;
    std::string outputs;  // what the operation shows of its results
    Machine& machine;
    machine::State start;

    const Entries& Calls() const { return machine.Calls(); }
    bool ChangedTheMachine() const { return machine->GetState() != start; }
};

/// Does its work and leaves what it has to show in `outputs`, also when it throws: see Show.
using Operation = std::function<void(std::string& outputs)>;

/// Writes the outputs when the scope ends, on whatever path.
class Show {
public:
    Show(std::string& outputs, std::function<std::string()> describe)
        : outputs_(outputs), describe_(std::move(describe)) {}
    ~Show() { outputs_ = describe_(); }
    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

private:
    std::string& outputs_;
    std::function<std::string()> describe_;
};

struct SweepOptions {
    machine::State start = machine::DefaultState();
    /// Put back what a run may have changed in this process; may be null.
    std::function<void()> afterEachRun = nullptr;
};

/// Runs the operation with its first platform call failing, then with its second one, and so on
/// until a run meets no fault; once with that fault alone and once with a fault that stays. Each
/// run begins from the same state and is judged by `check`. The last run, without a fault, must
/// succeed.
void Sweep(const Operation& operation, const std::function<void(const FaultyRun&)>& check,
           const SweepOptions& options = {});

}  // namespace sys_tests
