#include "tests/sys/simulated/Sweep.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace sys_tests {

namespace {

constexpr std::uint64_t kMostCalls = 2000;

Fault FirstFault(const Entries& entries, bool stays) {
    const auto first = std::ranges::find(entries, true, &machine::TraceEntry::injected);
    const auto before =
        std::ranges::count(entries.begin(), first, first->function, &machine::TraceEntry::function);
    return {first->function, static_cast<std::uint64_t>(before + 1), stays, CodeOf(*first)};
}

/// Returns whether the run met a fault.
bool RunWithFault(const Operation& operation, std::uint64_t nth, bool stays,
                  const std::function<void(const FaultyRun&)>& check, const SweepOptions& options) {
    Machine machine(options.start);
    machine->SetFaultPlan(machine::FaultPlan::FailCall(nth, stays));
    std::string outputs;
    const Outcome outcome = machine.Run([&] { operation(outputs); });
    const bool fired = machine->GetFaultPlan().Fired() != 0;
    machine->SetFaultPlan({});
    if (fired) {
        check({FirstFault(machine.Calls(), stays), outcome, outputs, machine, options.start});
    } else {
        EXPECT_EQ(outcome, Success());
    }
    if (options.afterEachRun) {
        options.afterEachRun();
    }
    return fired;
}

}  // namespace

void Sweep(const Operation& operation, const std::function<void(const FaultyRun&)>& check,
           const SweepOptions& options) {
    for (const bool stays : {false, true}) {
        std::uint64_t nth = 1;
        for (bool fired = true; fired && nth < kMostCalls; ++nth) {
            SCOPED_TRACE("call " + std::to_string(nth) + (stays ? " and every later one" : "") +
                         " fails");
            fired = RunWithFault(operation, nth, stays, check, options);
            if (testing::Test::HasFailure()) {
                return;  // the first one says it all
            }
        }
        EXPECT_GT(nth, 2U) << "the operation has no platform call that can fail";
        EXPECT_LT(nth, kMostCalls) << "the operation never comes to an end";
    }
}

}  // namespace sys_tests
