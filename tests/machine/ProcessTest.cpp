// Child processes: route, which runs inside this process, and real programs.
#include <gmock/gmock.h>

#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class ProcessTest : public SimulatedTest {
protected:
    // Runs a command line to its end; the exit code, or 1000 plus the error when it could not
    // start.
    static DWORD Run(std::string commandLine, void* environment = nullptr) {
        STARTUPINFOA startup = {};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process = {};
        if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, environment,
                            nullptr, &startup, &process)) {
            return 1000 + GetLastError();
        }
        DWORD code = 0;
        EXPECT_EQ(WaitForSingleObject(process.hProcess, INFINITE), WAIT_OBJECT_0);
        EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &code));
        EXPECT_TRUE(CloseHandle(process.hProcess));
        EXPECT_TRUE(CloseHandle(process.hThread));
        return code;
    }

    void CloseAll() {
        for (const HANDLE handle : {read_, process_.hProcess, process_.hThread}) {
            EXPECT_TRUE(CloseHandle(handle));
        }
    }

    HANDLE read_ = nullptr;
    HANDLE write_ = nullptr;
    PROCESS_INFORMATION process_ = {};
};

TEST_F(ProcessTest, RouteChangesTheModelUnlessThePlanChoosesItsExitCode) {
    char environment[] = "A=1\0B=2\0";
    EXPECT_EQ(Run("\"C:\\windows\\system32\\ROUTE.EXE\" DELETE 10.20.0.0", environment), 0U);
    Fail("route#2=7");
    EXPECT_EQ(Run("route -p ADD 10.1.0.0 mask 255.255.0.0 198.51.100.7 METRIC 3"), 0U);
    EXPECT_EQ(Run("route -p ADD 10.2.0.0 mask 255.255.0.0 198.51.100.7 METRIC 3"), 7U);
    const auto& routes = simulation_.GetState().routes;
    EXPECT_EQ(routes.size(), 2U);
    EXPECT_EQ(routes.back(), (PersistedRoute{"10.1.0.0", "255.255.0.0", "198.51.100.7", 3}));
}

TEST_F(ProcessTest, RouteEndsAsAProcessDoesAndWritesWhereItsHandlesLead) {
    std::string commandLine = "route DELETE 10.20.0.0";
    const auto start = [&](bool inherits) {
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, inherits};
        STARTUPINFOA startup = {};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        EXPECT_TRUE(CreatePipe(&read_, &write_, &inheritable, 0));
        startup.hStdOutput = write_;
        EXPECT_TRUE(CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                   nullptr, &startup, &process_));
        EXPECT_TRUE(CloseHandle(write_));
    };
    DWORD code = 0;
    DWORD available = 0;

    start(true);
    EXPECT_TRUE(GetExitCodeProcess(process_.hProcess, &code));
    EXPECT_EQ(code, DWORD{STILL_ACTIVE});
    EXPECT_EQ(WaitForSingleObject(process_.hProcess, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(PeekNamedPipe(read_, nullptr, 0, nullptr, &available, nullptr));
    EXPECT_EQ(available, std::string(" OK!\n").size());
    EXPECT_FALSE(TerminateProcess(process_.hProcess, 9));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    CloseAll();

    // Its own end of a pipe is not inherited: nothing comes, and nobody holds it.
    start(false);
    EXPECT_TRUE(TerminateProcess(process_.hProcess, 9));
    EXPECT_EQ(WaitForSingleObject(process_.hProcess, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process_.hProcess, &code));
    EXPECT_EQ(code, 9U);
    EXPECT_FALSE(PeekNamedPipe(read_, nullptr, 0, nullptr, &available, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BROKEN_PIPE});
    CloseAll();
}

}  // namespace
}  // namespace machine::test
