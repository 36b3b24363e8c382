// Child processes for real: a program of the tests' own is started and watched.
#include "common/proc/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "common/proc/RunCommand.h"
#include "common/util/Strings.h"
#include "tests/sys/support/Children.h"
#include "tests/sys/support/OpenHandles.h"
#include "tests/sys/support/Outcome.h"
#include "tests/sys/support/ScratchFolder.h"

namespace {

using proc::CChildProcess;
using proc::PipeCapture;
using sys_tests::ChildCommand;
using sys_tests::ChildProgram;
using sys_tests::StandardHandles;

class RecordingSink : public logging::ILogSink {
public:
    void Log(std::uint32_t level, const char* format, ...) override {
        std::va_list arguments;
        va_start(arguments, format);
        lines.emplace_back(level, util::FormatV(format, arguments));
        va_end(arguments);
    }
    std::vector<std::pair<std::uint32_t, std::string>> lines;
};

std::int32_t Execute(const std::string& commandLine, PipeCapture* capture = nullptr) {
    logging::NullLogSink log;
    CChildProcess child(log, INFINITE);
    return child.ExecuteCmd(nullptr, commandLine.c_str(), {}, {}, true, SW_HIDE, capture);
}

TEST(ChildProcess, ResultIsTheExitCode) {
    for (const std::int32_t code : {0, 3, 255}) {
        EXPECT_EQ(Execute(ChildCommand("exit " + std::to_string(code))), code);
        EXPECT_EQ(proc::RunCommand(ChildCommand("exit " + std::to_string(code))), code);
    }
    logging::NullLogSink log;
    CChildProcess child(log, INFINITE);
    const std::string program = ChildProgram();
    EXPECT_EQ(child.ExecuteCmd(program.c_str(), "anything exit 4", {}, {}, true, 0, nullptr), 4)
        << "a program given by name is not looked for in the command line";
    EXPECT_EQ(child.ExecuteCmd(nullptr, ChildCommand("exit 6").c_str(), {}, {}, true, 0, nullptr),
              6)
        << "one object runs one command after the other";
}

TEST(ChildProcess, ResultOfAProgramThatCannotBeStartedIsTheSystemsError) {
    PipeCapture capture;
    const StandardHandles standard;
    EXPECT_EQ(Execute("no-such-program-anywhere.exe x"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(Execute("no-such-program-anywhere.exe x", &capture), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(standard.AreInPlace());
    EXPECT_EQ(capture.StandardOutput(), "");
}

TEST(ChildProcess, CaptureTakesEverythingThatTheChildWrites) {
    constexpr std::size_t kBytes = 200 * 1024;
    PipeCapture capture;
    const StandardHandles standard;
    EXPECT_EQ(Execute(ChildCommand("flood " + std::to_string(kBytes)), &capture), 0);
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
    const std::pair<std::string, std::string> cases[] = {
        {"command-line 100%%", "command-line 100%"},
        {"command-line <%d>", "command-line <0>"},
        {"command-line <%9d>", "command-line <    "},
        {"command-line <%u %x %c>", std::string("command-line <0 0 ")},
    };
    for (const auto& [given, received] : cases) {
        PipeCapture capture;
        EXPECT_EQ(Execute(ChildCommand(given), &capture), 0);
        EXPECT_EQ(capture.StandardOutput(), ChildCommand(received)) << given;
    }
}

TEST(ChildProcess, RunningAsAnotherUserIsOnlyLogged) {
    const sys_tests::ScratchFolder folder;
    const std::string mark = folder.Path("mark");
    RecordingSink log;
    const std::size_t handlesBefore = sys_tests::OpenHandles();
    CChildProcess child(log, INFINITE);
    PipeCapture capture;
    EXPECT_EQ(child.ExecuteCmd(nullptr, ChildCommand("linger " + mark + " 0").c_str(), "someone",
                               "a secret", true, 0, &capture),
              -1);
    const std::vector<std::pair<std::uint32_t, std::string>> expected = {
        {1,
         "common\\proc\\ChildProcess:752 CChildProcess::ExecuteCmd() calling "
         "ExecuteAsUser:Execute()"}};
    EXPECT_EQ(log.lines, expected);
    EXPECT_EQ(sys_tests::OpenHandles(), handlesBefore);
    EXPECT_EQ(GetFileAttributesA(mark.c_str()), INVALID_FILE_ATTRIBUTES);
}

/// Starts a child that sleeps and returns a handle to it, once it lives.
HANDLE StartLingering(CChildProcess& child, const std::string& mark, unsigned milliseconds) {
    const std::string command = ChildCommand("linger " + mark + " " + std::to_string(milliseconds));
    EXPECT_EQ(child.ExecuteCmd(nullptr, command.c_str(), {}, {}, false, 0, nullptr), 0);
    for (int tries = 0; tries < 1000; ++tries) {
        if (GetFileAttributesA(mark.c_str()) != INVALID_FILE_ATTRIBUTES) {
            const DWORD id = std::strtoul(sys_tests::ReadFileContent(mark).c_str(), nullptr, 10);
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
        const sys_tests::ScratchFolder folder;
        logging::NullLogSink log;
        const std::size_t handlesBefore = sys_tests::OpenHandles();
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
        EXPECT_EQ(sys_tests::OpenHandles(), handlesBefore);
    }
}

TEST(ChildProcess, OnlyAWaitedRunLeavesItsTwoChildSideHandlesOpen) {
    struct Case {
        const char* name;
        std::string command;
        bool wait;
        bool capture;
        std::size_t left;
    };
    const Case cases[] = {
        {"waited", ChildCommand("exit 0"), true, false, 2},
        {"waited, captured", ChildCommand("exit 0"), true, true, 2},
        {"not waited", ChildCommand("exit 0"), false, false, 0},
        {"not waited, captured", ChildCommand("exit 0"), false, true, 0},
        {"not started", "no-such-program-anywhere.exe", true, false, 0},
        {"not started, captured", "no-such-program-anywhere.exe", true, true, 0},
    };
    for (const Case& c : cases) {
        for (int again = 0; again < 2; ++again) {  // the first one lets the libraries settle
            const std::size_t handlesBefore = sys_tests::OpenHandles();
            {
                logging::NullLogSink log;
                CChildProcess child(log, INFINITE);
                PipeCapture capture;
                child.ExecuteCmd(nullptr, c.command.c_str(), {}, {}, c.wait, 0,
                                 c.capture ? &capture : nullptr);
            }
            EXPECT_EQ(sys_tests::OpenHandles() - handlesBefore, c.left) << c.name;
        }
    }
}

TEST(ChildProcess, StartUpInformationPointsAtTheDefaultPipes) {
    logging::NullLogSink log;
    CChildProcess child(log, INFINITE);
    STARTUPINFOA info{};
    info.dwFlags = STARTF_FORCEOFFFEEDBACK;
    child.InitializeStartupInfo(info);
    EXPECT_EQ(info.cb, sizeof info);
    EXPECT_EQ(info.dwFlags, DWORD{STARTF_FORCEOFFFEEDBACK | STARTF_USESTDHANDLES});
    EXPECT_EQ(info.hStdError, info.hStdOutput);
    for (HANDLE const handle : {info.hStdInput, info.hStdOutput}) {
        DWORD flags = 0;
        EXPECT_NE(GetHandleInformation(handle, &flags), 0);
        EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, DWORD{HANDLE_FLAG_INHERIT});
        CloseHandle(handle);
    }
}

TEST(PipeCapture, NothingToDrainOrRestoreBeforeItIsAttached) {
    PipeCapture capture;
    EXPECT_FALSE(capture.Restore());
    EXPECT_TRUE(capture.Drain());
    EXPECT_EQ(capture.StandardOutput(), "");
}

TEST(PipeCapture, EchoGoesToTheRestoredHandles) {
    const StandardHandles standard;
    PipeCapture capture;
    STARTUPINFOA info{};
    ASSERT_TRUE(capture.Attach(info));
    EXPECT_TRUE(capture.Restore());
    const std::string text("before\0after", 12);
    for (HANDLE const pipe : {info.hStdOutput, info.hStdError}) {
        DWORD written = 0;
        ASSERT_NE(WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &written, nullptr),
                  0);
    }
    EXPECT_TRUE(capture.Drain());
    // A piece is kept as zero-terminated text, while the echo is what was written.
    EXPECT_EQ(capture.StandardOutput(), "before");
    EXPECT_EQ(capture.StandardError(), "before");
    EXPECT_EQ(standard.Output(), text);
    EXPECT_EQ(standard.Error(), text);
}

TEST(PipeCapture, AttachGivesTheChildItsEndsAlone) {
    const StandardHandles standard;
    const std::size_t handlesBefore = sys_tests::OpenHandles();
    {
        PipeCapture capture;
        STARTUPINFOA info{};
        ASSERT_TRUE(capture.Attach(info));
        EXPECT_EQ(info.dwFlags, DWORD{STARTF_USESTDHANDLES});
        EXPECT_EQ(GetStdHandle(STD_INPUT_HANDLE), info.hStdInput);
        EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), info.hStdOutput);
        EXPECT_EQ(GetStdHandle(STD_ERROR_HANDLE), info.hStdError);
        for (HANDLE const handle : {info.hStdInput, info.hStdOutput, info.hStdError}) {
            DWORD flags = 0;
            EXPECT_NE(GetHandleInformation(handle, &flags), 0);
            EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, DWORD{HANDLE_FLAG_INHERIT});
        }
        EXPECT_EQ(sys_tests::OpenHandles(), handlesBefore + 6);

        // More than one read buffer's worth, in one drain, which must not feed on its own echo.
        DWORD written = 0;
        const std::string text(10000, 'x');
        ASSERT_NE(WriteFile(info.hStdError, text.data(), static_cast<DWORD>(text.size()), &written,
                            nullptr),
                  0);
        EXPECT_TRUE(capture.Drain());
        EXPECT_EQ(capture.StandardError(), text);
        EXPECT_TRUE(capture.Restore());
        EXPECT_TRUE(standard.AreInPlace());
    }
    EXPECT_EQ(sys_tests::OpenHandles(), handlesBefore);
}

}  // namespace
