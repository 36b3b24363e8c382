// Child processes: the stand-in for route, and real programs.
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
};

TEST_F(ProcessTest, RouteChangesTheModelUnlessThePlanChoosesItsExitCode) {
    char environment[] = "A=1\0B=2\0";
    EXPECT_EQ(Run("\"C:\\windows\\system32\\ROUTE.EXE\" DELETE 10.20.0.0", environment), 0U);
    Fail("route#2=7");
    EXPECT_EQ(Run("route -p ADD 10.1.0.0 mask 255.255.0.0 198.51.100.7 METRIC 3"), 0U);
    EXPECT_EQ(Run("route -p ADD 10.2.0.0 mask 255.255.0.0 198.51.100.7 METRIC 3"), 7U);
    EXPECT_EQ(simulation_.GetState().routes,
              (std::vector<PersistedRoute>{{"10.1.0.0", "255.255.0.0", "198.51.100.7", 3}}));
}

TEST_F(ProcessTest, OtherProgramsAreRealAndWithoutItsProgramRouteFailsLoudly) {
    EXPECT_EQ(Run("cmd /c exit 5"), 5U);
    EXPECT_EQ(Run("no-such-program-anywhere"), 1000U + ERROR_FILE_NOT_FOUND);
    simulation_.SetRouteProgram("no-such-folder/simulated-route.exe");
    EXPECT_EQ(Run("route DELETE 10.20.0.0"), 1000U + ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(simulation_.TakeUnexpected().size(), 1U);
}

}  // namespace
}  // namespace machine::test
