// Child processes on the simulated machine: their calls in order, and each of them failing where
// the output is captured; the module's own runs capture none.
#include "common/proc/ChildProcess.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/proc/RunCommand.h"
#include "tests/common/proc/Children.h"
#include "tests/common/sys/Machine.h"

namespace {

using namespace sys_tests;
using proc::PipeCapture;
using testing::ElementsAre;

/// The calls without the waits and reads, whose number is a matter of time.
std::vector<std::string> TimelessCalls(const Machine& machine) {
    std::vector<std::string> calls = machine.Texts();
    std::erase_if(calls, [](const std::string& call) {
        return call.starts_with("WaitForSingleObject") || call.starts_with("PeekNamedPipe") ||
               call.starts_with("ReadFile") || call.starts_with("WriteFile");
    });
    return calls;
}

TEST(SimulatedChild, RouteRunsOnTheDefaultPipes) {
    Machine machine;
    const std::string command = "route -p ADD 10.40.0.0 mask 255.255.0.0 198.51.100.254 METRIC 3";
    std::int32_t result = -1;
    EXPECT_EQ(machine.Run([&] { result = proc::RunCommand(command); }), Success());
    EXPECT_EQ(result, 0);
    EXPECT_THAT(
        TimelessCalls(machine),
        ElementsAre("CreatePipe size=0", "SetHandleInformation mask=0x1 flags=0x0",
                    "CreatePipe size=0", "SetHandleInformation mask=0x1 flags=0x0",
                    "CreateProcessA application= command line=" + command, "GetExitCodeProcess",
                    "CloseHandle kind=process handle", "CloseHandle kind=thread handle",
                    "CloseHandle kind=pipe handle", "CloseHandle kind=pipe handle"));
    EXPECT_THAT(machine.Texts("WaitForSingleObject"),
                testing::Each("WaitForSingleObject milliseconds=100"));
    const machine::PersistedRoute added{"10.40.0.0", "255.255.0.0", "198.51.100.254", 3};
    EXPECT_EQ(machine->GetState().routes.back(), added);
}

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
