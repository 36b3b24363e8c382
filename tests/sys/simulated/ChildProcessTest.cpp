// Child processes on the simulated machine: their calls in order, each of them failing in turn, and
// the account of handles.
#include "common/proc/ChildProcess.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/proc/RunCommand.h"
#include "tests/sys/simulated/Sweep.h"
#include "tests/sys/support/Children.h"

namespace {

using namespace sys_tests;
using proc::CChildProcess;
using proc::PipeCapture;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kFirstPipe = "CChildProcess::InitializeStartupInfo";

/// The calls without the waits and reads, whose number is a matter of time.
std::vector<std::string> TimelessCalls(const Machine& machine) {
    std::vector<std::string> calls;
    for (const std::string& call : machine.Calls()) {
        if (!call.starts_with("WaitForSingleObject") && !call.starts_with("PeekNamedPipe") &&
            !call.starts_with("ReadFile") && !call.starts_with("WriteFile")) {
            calls.push_back(call);
        }
    }
    return calls;
}

std::vector<std::string> DefaultPipeCalls() {
    return {"CreatePipe size=0", "SetHandleInformation mask=0x1 flags=0x0", "CreatePipe size=0",
            "SetHandleInformation mask=0x1 flags=0x0"};
}

TEST(SimulatedChild, RouteRunsOnTheDefaultPipes) {
    Machine machine;
    const std::string command = "route -p ADD 10.40.0.0 mask 255.255.0.0 198.51.100.254 METRIC 3";
    std::int32_t result = -1;
    EXPECT_EQ(machine.Run([&] { result = proc::RunCommand(command); }), Success());
    EXPECT_EQ(result, 0);
    std::vector<std::string> calls = DefaultPipeCalls();
    calls.insert(calls.end(),
                 {"CreateProcessA application= command line=" + command, "GetExitCodeProcess",
                  "CloseHandle kind=process handle", "CloseHandle kind=thread handle",
                  "CloseHandle kind=pipe handle", "CloseHandle kind=pipe handle"});
    EXPECT_THAT(TimelessCalls(machine), ElementsAreArray(calls));
    EXPECT_THAT(machine.Calls("WaitForSingleObject"),
                testing::Each("WaitForSingleObject milliseconds=100"));
    EXPECT_THAT(machine.Leaks(), ElementsAre("pipe handle", "pipe handle"));
    const machine::PersistedRoute added{"10.40.0.0", "255.255.0.0", "198.51.100.254", 3};
    EXPECT_EQ(machine->GetState().routes.back(), added);

    machine.Fail("route=7");
    EXPECT_EQ(proc::RunCommand(command), 7);
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
            return ChildFailure(kFirstPipe, pipes == 1 ? 636 : 643, 6);
        }
    }
    return Success();
}

/// A child that was waited for keeps the two ends that it inherited of the default pipes open.
std::vector<std::string> KeptLeaks(const Entries& entries) {
    const bool waited = std::any_of(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.function == "GetExitCodeProcess";
    });
    return {waited ? 2U : 0U, "pipe handle"};
}

SweepOptions WithKeptLeaks() {
    SweepOptions options;
    options.keptLeaks = KeptLeaks;
    return options;
}

TEST(SimulatedChild, AnyFailingCallOfAWaitedRun) {
    const std::string command = ChildCommand("exit 3");
    const Operation operation = [&](std::string& outputs) {
        outputs = "nothing";
        outputs = std::to_string(proc::RunCommand(command));
    };
    const auto check = [](const FaultyRun& run) {
        const Entries& entries = run.machine.Entries();
        const Outcome expected = ExpectedOutcome(entries);
        EXPECT_EQ(run.outcome, expected);
        EXPECT_EQ(run.outputs,
                  expected == Success() ? std::to_string(ExpectedResult(entries, 3)) : "nothing");
    };
    Sweep(operation, check, WithKeptLeaks());
}

TEST(SimulatedChild, AnyFailingCallOfARunThatIsNotWaitedFor) {
    const ScratchFolder folder;
    for (const DWORD killTimeout : {DWORD{INFINITE}, DWORD{0}}) {
        const std::string command = ChildCommand("linger " + folder.Path("mark") + " 100");
        const Operation operation = [&](std::string& outputs) {
            outputs = "nothing";
            logging::NullLogSink log;
            CChildProcess child(log, killTimeout);
            outputs = std::to_string(
                child.ExecuteCmd(nullptr, command.c_str(), {}, {}, false, 0, nullptr));
        };
        const auto check = [](const FaultyRun& run) {
            const Entries& entries = run.machine.Entries();
            const Outcome expected = ExpectedOutcome(entries);
            EXPECT_EQ(run.outcome, expected);
            const bool started = !run.machine.Calls("WaitForSingleObject").empty();
            EXPECT_EQ(run.outputs, expected != Success() ? "nothing"
                                   : started             ? "0"
                                                         : std::to_string(ERROR_FILE_NOT_FOUND));
        };
        Sweep(operation, check, WithKeptLeaks());
    }
}

TEST(SimulatedChild, ACaptureRedirectsBeforeTheStartAndRestoresAfterTheEnd) {
    const StandardHandles standard;
    Machine machine;
    PipeCapture capture;
    const std::string command = ChildCommand("exit 4");
    std::int32_t result = -1;
    EXPECT_EQ(machine.Run([&] {
        logging::NullLogSink log;
        CChildProcess child(log, INFINITE);
        result = child.ExecuteCmd(nullptr, command.c_str(), {}, {}, true, 0, &capture);
    }),
              Success());
    EXPECT_EQ(result, 4);
    std::vector<std::string> calls = DefaultPipeCalls();
    const std::string noInheritance = "DuplicateHandle inherit=no options=0x2";
    const std::string closePipe = "CloseHandle kind=pipe handle";
    calls.insert(calls.end(), {"CreatePipe size=65536",
                               "CreatePipe size=0",
                               "CreatePipe size=65536",
                               "GetStdHandle which=STD_OUTPUT_HANDLE",
                               "GetStdHandle which=STD_ERROR_HANDLE",
                               "GetStdHandle which=STD_INPUT_HANDLE",
                               "SetStdHandle which=STD_OUTPUT_HANDLE",
                               "SetStdHandle which=STD_ERROR_HANDLE",
                               "SetStdHandle which=STD_INPUT_HANDLE",
                               noInheritance,
                               closePipe,
                               noInheritance,
                               closePipe,
                               noInheritance,
                               closePipe,
                               "CreateProcessA application= command line=" + command,
                               "GetExitCodeProcess",
                               "CloseHandle kind=process handle",
                               "CloseHandle kind=thread handle",
                               "SetStdHandle which=STD_INPUT_HANDLE",
                               "SetStdHandle which=STD_OUTPUT_HANDLE",
                               "SetStdHandle which=STD_ERROR_HANDLE",
                               closePipe,
                               closePipe});
    EXPECT_THAT(TimelessCalls(machine), ElementsAreArray(calls));
    EXPECT_TRUE(standard.AreInPlace());
}

/// Whether a standard handle is the parent's own again at the end: it was saved, and either it was
/// never redirected or the last attempt to set it back has worked.
bool IsRestored(const Entries& entries, const std::string& which) {
    bool saved = true;
    bool redirecting = true;  // the first three settings, up to the first that fails
    std::size_t settings = 0;
    bool own = true;
    for (const machine::TraceEntry& entry : entries) {
        if (entry.function == "GetStdHandle" && settings == 0) {
            saved = saved && !(entry.failed && ArgumentOf(entry, "which") == which);
        } else if (entry.function == "SetStdHandle") {
            if (!entry.failed && ArgumentOf(entry, "which") == which) {
                own = !redirecting && saved;
            }
            redirecting = redirecting && !entry.failed && ++settings < 3;
        }
    }
    return own;
}

TEST(SimulatedChild, AnyFailingCallOfACapturedRun) {
    StandardHandles standard;
    const std::string command = ChildCommand("command-line");
    const Operation operation = [&](std::string& outputs) {
        PipeCapture capture;
        std::string result = "nothing";
        const Show show(outputs, [&] { return result + " " + capture.StandardOutput(); });
        logging::NullLogSink log;
        CChildProcess child(log, INFINITE);
        result =
            std::to_string(child.ExecuteCmd(nullptr, command.c_str(), {}, {}, true, 0, &capture));
    };
    const auto check = [&](const FaultyRun& run) {
        const Entries& entries = run.machine.Entries();
        const Outcome expected = ExpectedOutcome(entries);
        EXPECT_EQ(run.outcome, expected);
        const std::string result =
            expected == Success() ? std::to_string(ExpectedResult(entries, 0)) : "nothing";
        for (const auto& [name, which] : {std::pair(STD_INPUT_HANDLE, "STD_INPUT_HANDLE"),
                                          std::pair(STD_OUTPUT_HANDLE, "STD_OUTPUT_HANDLE"),
                                          std::pair(STD_ERROR_HANDLE, "STD_ERROR_HANDLE")}) {
            EXPECT_EQ(standard.IsInPlace(name), IsRestored(entries, which)) << which;
        }
        const bool nothingTaken = run.outputs == result + " ";
        const bool everythingTaken = run.outputs == result + " " + command;
        EXPECT_TRUE(nothingTaken || everythingTaken) << run.outputs;
        const bool passedOver = run.fault.Is("CloseHandle") || run.fault.Is("WriteFile") ||
                                run.fault.Is("SetHandleInformation");
        if (passedOver && !run.fault.stays) {
            EXPECT_TRUE(everythingTaken) << run.fault.function;
        }
    };
    SweepOptions options = WithKeptLeaks();
    options.afterEachRun = [&] { standard.PutInPlace(); };
    Sweep(operation, check, options);
}

}  // namespace
