#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/ComMemoryBalance.h"
#include "machine/Simulation.h"
#include "tests/sys/support/Outcome.h"

namespace sys_tests {

/// A simulated machine that serves this program's platform calls for the life of the object, and
/// the books on what one operation did to it.
class Machine {
public:
    explicit Machine(machine::State state = machine::DefaultState());
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    machine::Simulation* operator->() { return &simulation_; }
    void Fail(std::string_view plan) { simulation_.SetFaultPlan(machine::FaultPlan::Parse(plan)); }

    /// Runs one operation. The rest of this class is about the last one.
    Outcome Run(const std::function<void()>& operation);

    const std::vector<machine::TraceEntry>& Entries() const { return entries_; }
    /// The calls as "interface::function name=value ...", without the releases of interfaces and
    /// what was read.
    std::vector<std::string> Calls() const;
    /// The calls of one function.
    std::vector<std::string> Calls(std::string_view function) const;
    /// Every call by its name alone, "IWbemServices::Release".
    std::vector<std::string> CallNames() const;

    /// What is still held or was given back wrongly, by kind: "LSA policy handle".
    std::vector<std::string> Leaks();
    /// Blocks of COM's allocator that the operation left behind.
    std::size_t LostComBlocks() const { return lostComBlocks_; }

private:
    machine::Simulation simulation_;
    machine::ComMemoryBalance comMemory_;
    std::vector<machine::TraceEntry> entries_;
    std::size_t lostComBlocks_ = 0;
};

std::string NameOf(const machine::TraceEntry& entry);
/// The code that a failed call gave; 0 where it gives none itself.
std::uint32_t CodeOf(const machine::TraceEntry& entry);
/// An argument that the call must have.
std::string ArgumentOf(const machine::TraceEntry& entry, std::string_view name);

/// What every connection to WMI begins with.
std::vector<std::string> ConnectionCalls();

}  // namespace sys_tests
