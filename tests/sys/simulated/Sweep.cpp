#include "tests/sys/simulated/Sweep.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace sys_tests {

namespace {

constexpr std::uint64_t kMostCalls = 2000;

Fault FirstFault(const Entries& entries, bool stays) {
    const auto first =
        std::find_if(entries.begin(), entries.end(),
                     [](const machine::TraceEntry& entry) { return entry.injected; });
    const auto isSame = [&first](const machine::TraceEntry& entry) {
        return entry.function == first->function;
    };
    return {first->function,
            static_cast<std::uint64_t>(std::count_if(entries.begin(), first, isSame) + 1), stays,
            CodeOf(*first)};
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
    const Fault fault = fired ? FirstFault(machine.Entries(), stays) : Fault{};
    EXPECT_THAT(machine->Unexpected(), testing::IsEmpty());
    EXPECT_EQ(machine.LostComBlocks(), 0U);
    EXPECT_THAT(machine.Leaks(),
                testing::ElementsAreArray(options.keptLeaks ? options.keptLeaks(machine.Entries())
                                                            : std::vector<std::string>()));
    if (fired) {
        check({fault, outcome, outputs, machine, options.start});
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
