// A captured run of a child with each of its calls failing. The module's own runs capture nothing;
// they are swept with it.
#include "common/proc/ChildProcess.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "tests/common/proc/Children.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;
using proc::PipeCapture;

/// Where a run stops; what comes later can change its result no more.
std::int32_t ExpectedResult(const Entries& entries, std::int32_t exitCode) {
    for (const machine::TraceEntry& entry : entries) {
        if (entry.failed && entry.function == "CreateProcessA") {
            return static_cast<std::int32_t>(CodeOf(entry));
        }
        if (entry.failed &&
            (entry.function == "WaitForSingleObject" || entry.function == "GetExitCodeProcess")) {
            return -1;
        }
    }
    return exitCode;
}

Outcome ExpectedOutcome(const Entries& entries) {
    std::size_t pipes = 0;
    for (const machine::TraceEntry& entry : entries) {
        if (entry.function == "CreatePipe" && ++pipes <= 2 && entry.failed) {
            return ChildFailure("CChildProcess::InitializeStartupInfo", pipes == 1 ? 636 : 643, 6);
        }
    }
    return Success();
}

TEST(SimulatedChild, AnyFailingCallOfACapturedRun) {
    const std::string command = ChildCommand("command-line");
    bool fired = true;
    for (std::uint64_t nth = 1; fired && !HasFailure(); ++nth) {
        for (const bool stays : {false, true}) {
            SCOPED_TRACE("call " + std::to_string(nth) + (stays ? " and all later ones" : "") +
                         " fails");
            StandardHandles standard;
            Machine machine;
            machine->SetFaultPlan(machine::FaultPlan::FailCall(nth, stays));
            PipeCapture capture;
            std::string result = "nothing";
            const Outcome outcome = machine.Run(
                [&] { result = std::to_string(Execute(command, true, INFINITE, &capture)); });
            fired = machine->GetFaultPlan().Fired() != 0;
            machine->SetFaultPlan({});
            const Entries& calls = machine.Calls();
            const Outcome expected = ExpectedOutcome(calls);
            EXPECT_EQ(outcome, expected);
            EXPECT_EQ(result,
                      expected == Success() ? std::to_string(ExpectedResult(calls, 0)) : "nothing");
            const auto first = std::ranges::find(calls, true, &machine::TraceEntry::injected);
            const std::string failed = first == calls.end() ? "" : first->function;
            // Only a handle that cannot be asked for or set back is lost.
            EXPECT_TRUE(failed == "GetStdHandle" || failed == "SetStdHandle" || stays ||
                        standard.AreInPlace());
            EXPECT_THAT(capture.StandardOutput(), testing::AnyOf("", command));
            if (!stays && (failed == "WriteFile" || failed == "SetHandleInformation")) {
                EXPECT_EQ(capture.StandardOutput(), command) << failed << " is passed over";
            }
        }
    }
}

}  // namespace
