// Child processes for real: a program of the tests' own is started and watched.
#include "common/proc/ChildProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/proc/RunCommand.h"
#include "tests/common/proc/Children.h"
#include "tests/support/RecordingLog.h"

namespace {

using namespace sys_tests;
using proc::CChildProcess;
using proc::PipeCapture;

bool IsInherited(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != 0 && (flags & HANDLE_FLAG_INHERIT) != 0;
}

void Write(HANDLE pipe, const std::string& text) {
    DWORD written = 0;
    ASSERT_NE(WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &written, nullptr), 0);
}

TEST(ChildProcess, ResultIsTheExitCodeOrTheSystemsError) {
    EXPECT_EQ(proc::RunCommand(ChildCommand("exit 3")), 3);
    logging::NullLogSink log;
    CChildProcess child(log, INFINITE);
    const std::string program = ChildProgram();
    EXPECT_EQ(child.ExecuteCmd(program.c_str(), "anything exit 4", {}, {}, true, 0, nullptr), 4)
        << "a program given by name is not looked for in the command line";
    EXPECT_EQ(child.ExecuteCmd(nullptr, ChildCommand("exit 6").c_str(), {}, {}, true, 0, nullptr),
              6)
        << "one object runs one command after the other";

    const StandardHandles standard;
    PipeCapture capture;
    for (PipeCapture* const with : {static_cast<PipeCapture*>(nullptr), &capture}) {
        EXPECT_EQ(Execute("no-such-program-anywhere.exe x", true, INFINITE, with),
                  ERROR_FILE_NOT_FOUND);
    }
    EXPECT_TRUE(standard.AreInPlace());
    EXPECT_EQ(capture.StandardOutput(), "");
}

TEST(ChildProcess, CaptureTakesEverythingThatTheChildWrites) {
    constexpr std::size_t kBytes = 200 * 1024;
    PipeCapture capture;
    const StandardHandles standard;
    EXPECT_EQ(Execute(ChildCommand("flood " + std::to_string(kBytes)), true, INFINITE, &capture),
              0);
    EXPECT_TRUE(standard.AreInPlace());
    EXPECT_TRUE(capture.StandardOutput() == std::string(kBytes, 'o'))
        << capture.StandardOutput().size() << " bytes";
    EXPECT_TRUE(capture.StandardError() == std::string(kBytes, 'e'))
        << capture.StandardError().size() << " bytes";
    // What is drained after the child's end is echoed to the parent's own handles.
    EXPECT_TRUE(capture.StandardOutput().ends_with(standard.Output()));
    EXPECT_TRUE(capture.StandardError().ends_with(standard.Error()));
}

TEST(ChildProcess, CommandLineIsAFormatWithoutArguments) {
    const StandardHandles standard;
    // What the text grows to is cut at the length that it was written with.
    const std::pair<const char*, const char*> cases[] = {
        {"command-line 100%%", "command-line 100%"},
        {"command-line <%u %x %c>", "command-line <0 0 "},
    };
    for (const auto& [given, received] : cases) {
        PipeCapture capture;
        EXPECT_EQ(Execute(ChildCommand(given), true, INFINITE, &capture), 0);
        EXPECT_EQ(capture.StandardOutput(), ChildCommand(received)) << given;
    }
}

TEST(ChildProcess, RunningAsAnotherUserIsOnlyLogged) {
    const support::ScratchFolder folder;
    const std::string mark = folder.Path("mark");
    support::RecordingLog log;
    CChildProcess child(log, INFINITE);
    PipeCapture capture;
    EXPECT_EQ(child.ExecuteCmd(nullptr, ChildCommand("linger " + mark + " 0").c_str(), "someone",
                               "a secret", true, 0, &capture),
              -1);
    const std::vector<std::string> expected = {
        "1 common\\proc\\ChildProcess:752 CChildProcess::ExecuteCmd() calling "
        "ExecuteAsUser:Execute()"};
    EXPECT_EQ(log.lines, expected);
    EXPECT_EQ(GetFileAttributesA(mark.c_str()), INVALID_FILE_ATTRIBUTES);
    // It has let go of the object, which another thread may use.
    std::thread([&child] {
        EXPECT_EQ(child.ExecuteCmd(nullptr, "x", "someone", {}, true, 0, nullptr), -1);
    }).join();
}

/// Starts a child that sleeps and returns a handle to it, once it lives.
HANDLE StartLingering(CChildProcess& child, const std::string& mark, unsigned milliseconds) {
    const std::string command = ChildCommand("linger " + mark + " " + std::to_string(milliseconds));
    EXPECT_EQ(child.ExecuteCmd(nullptr, command.c_str(), {}, {}, false, 0, nullptr), 0);
    for (int tries = 0; tries < 1000; ++tries) {
        // Not there, or still being written.
        if (DWORD id = 0; std::ifstream(mark) >> id && id != 0) {
            return OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, id);
        }
        Sleep(10);
    }
    return nullptr;
}

TEST(ChildProcess, DestructorWaitsThenEndsTheChild) {
    struct Case {
        const char* name;
        unsigned lifetime;
        DWORD killTimeout;
        DWORD exitCode;
    };
    const Case cases[] = {
        {"outlives the time-out", 60000, 200, 1},
        {"ends in time", 300, 30000, 5},
        {"no time-out", 300, INFINITE, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const support::ScratchFolder folder;
        logging::NullLogSink log;
        HANDLE process = nullptr;
        {
            CChildProcess child(log, c.killTimeout);
            process = StartLingering(child, folder.Path("mark"), c.lifetime);
            ASSERT_NE(process, nullptr);
        }
        EXPECT_EQ(WaitForSingleObject(process, 5000), WAIT_OBJECT_0);
        DWORD exitCode = 0;
        EXPECT_NE(GetExitCodeProcess(process, &exitCode), 0);
        EXPECT_EQ(exitCode, c.exitCode);
        CloseHandle(process);
    }
}

TEST(PipeCapture, GivesTheChildItsEndsAndEchoesToTheRestoredHandles) {
    const StandardHandles standard;
    PipeCapture capture;
    EXPECT_FALSE(capture.Restore()) << "nothing to restore before it is attached";
    EXPECT_TRUE(capture.Drain());
    STARTUPINFOA info{};
    ASSERT_TRUE(capture.Attach(info));
    EXPECT_EQ(info.dwFlags, DWORD{STARTF_USESTDHANDLES});
    EXPECT_EQ(GetStdHandle(STD_INPUT_HANDLE), info.hStdInput);
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), info.hStdOutput);
    EXPECT_EQ(GetStdHandle(STD_ERROR_HANDLE), info.hStdError);
    for (HANDLE const handle : {info.hStdInput, info.hStdOutput, info.hStdError}) {
        EXPECT_TRUE(IsInherited(handle));
    }
    // One drain must not feed on its own echo.
    Write(info.hStdError, "first ");
    EXPECT_TRUE(capture.Drain());
    EXPECT_EQ(capture.StandardError(), "first ");

    EXPECT_TRUE(capture.Restore());
    EXPECT_TRUE(standard.AreInPlace());
    // A piece is kept as zero-terminated text, while the echo is what was written.
    const std::string text("before\0after", 12);
    Write(info.hStdOutput, text);
    Write(info.hStdError, text);
    EXPECT_TRUE(capture.Drain());
    EXPECT_EQ(capture.StandardOutput(), "before");
    EXPECT_EQ(capture.StandardError(), "first before");
    EXPECT_EQ(standard.Output(), text);
    EXPECT_EQ(standard.Error(), text);
}

}  // namespace
