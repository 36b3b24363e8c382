#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "machine/ComMemoryBalance.h"
#include "machine/Simulation.h"
#include "tests/common/sys/Outcome.h"

namespace sys_tests {

using Entries = std::vector<machine::TraceEntry>;

/// A simulated machine that serves this program's platform calls for the life of the object. At its
/// end it must have met no call that it does not know, and what it handed out must be back, but for
/// what the module keeps on purpose.
class Machine {
public:
    explicit Machine(machine::State state = machine::DefaultState());
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    machine::Simulation* operator->() { return &simulation_; }
    void Fail(std::string_view plan) { simulation_.SetFaultPlan(machine::FaultPlan::Parse(plan)); }

    /// Runs one operation, which may leave no block of COM's allocator behind. The rest of this
    /// class is about the last one.
    Outcome Run(const std::function<void()>& operation);

    const Entries& Calls() const { return entries_; }
    /// The calls as "interface::function name=value ...", of one function or of all, without the
    /// releases of interfaces and what was read.
    std::vector<std::string> Texts(std::string_view function = {}) const;

private:
    machine::Simulation simulation_;
    machine::ComMemoryBalance comMemory_;
    Entries entries_;
};

/// The code that a failed call gave; 0 where it gives none itself.
std::uint32_t CodeOf(const machine::TraceEntry& entry);
/// An argument that the call must have.
std::string ArgumentOf(const machine::TraceEntry& entry, std::string_view name);
/// The default machine as a member of corp.example, its computer object in the container of
/// computers or in the unit "West" or "East/Sales".
machine::State MemberIn(std::string_view unit);

}  // namespace sys_tests
