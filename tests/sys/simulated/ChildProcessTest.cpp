// Child processes on the simulated machine: their calls in order, each of them failing in turn, and
// the account of handles.
#include "common/proc/ChildProcess.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "common/proc/RunCommand.h"
#include "tests/sys/simulated/Sweep.h"
#include "tests/sys/support/Children.h"

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

TEST(SimulatedChild, AnyFailingCallOfARunWithoutCapture) {
    const ScratchFolder folder;
    struct Case {
        std::string command;
        bool wait;
        DWORD killTimeout;
    };
    const std::string linger = ChildCommand("linger " + folder.Path("mark") + " 100");
    const Case cases[] = {
        {ChildCommand("exit 3"), true, INFINITE}, {linger, false, INFINITE}, {linger, false, 0}};
    for (const Case& c : cases) {
        const Operation operation = [&](std::string& outputs) {
            outputs = "nothing";
            outputs = std::to_string(Execute(c.command, c.wait, c.killTimeout));
        };
        const auto check = [&](const FaultyRun& run) {
            const Outcome expected = ExpectedOutcome(run.Calls());
            EXPECT_EQ(run.outcome, expected);
            const bool started = !run.machine.Texts("WaitForSingleObject").empty();
            const std::int32_t result = c.wait    ? ExpectedResult(run.Calls(), 3)
                                        : started ? 0
                                                  : ERROR_FILE_NOT_FOUND;
            EXPECT_EQ(run.outputs, expected == Success() ? std::to_string(result) : "nothing");
        };
        Sweep(operation, check);
    }
}

TEST(SimulatedChild, AnyFailingCallOfACapturedRun) {
    StandardHandles standard;
    const std::string command = ChildCommand("command-line");
    const Operation operation = [&](std::string& outputs) {
        PipeCapture capture;
        std::string result = "nothing";
        const Show show(outputs, [&] { return result + " " + capture.StandardOutput(); });
        result = std::to_string(Execute(command, true, INFINITE, &capture));
    };
    const auto check = [&](const FaultyRun& run) {
        const Entries& entries = run.Calls();
        const Outcome expected = ExpectedOutcome(entries);
        EXPECT_EQ(run.outcome, expected);
        const std::string result =
            expected == Success() ? std::to_string(ExpectedResult(entries, 0)) : "nothing";
        // Only a handle that cannot be asked for or set back is lost.
        const bool lost =
            run.fault.Is("GetStdHandle") || (run.fault.Is("SetStdHandle") && run.fault.ordinal > 3);
        EXPECT_TRUE(lost || run.fault.stays || standard.AreInPlace());
        const bool nothingTaken = run.outputs == result + " ";
        const bool everythingTaken = run.outputs == result + " " + command;
        EXPECT_TRUE(nothingTaken || everythingTaken) << run.outputs;
        const bool passedOver = run.fault.Is("WriteFile") || run.fault.Is("SetHandleInformation");
        if (passedOver && !run.fault.stays) {
            EXPECT_TRUE(everythingTaken) << run.fault.function;
        }
    };
    SweepOptions options;
    options.afterEachRun = [&] { standard.PutInPlace(); };
    Sweep(operation, check, options);
}

}  // namespace
