// What a request shows its host in one order: the cases on simulated machines keep the answer and
// the log apart.
#include <gtest/gtest.h>

#include <string>

#include "common/err/GeneralError.h"
#include "tests/native/OnMachine.h"
#include "tests/support/ScratchFile.h"
#include "tests/toolbox/RecordingHost.h"

namespace {

using ConfigureRequest = native::OnMachine;
using support::ScratchFile;
using toolbox_tests::RecordingHost;

TEST_F(ConfigureRequest, AConfigErrorIsAnsweredBeforeItIsLoggedAndAnotherAfter) {
    const ScratchFile scratch("[Networking]\nComputerName=PC9", "site.ini");
    for (const bool isConfigError : {true, false}) {
        machine.faults = machine::FaultPlan::Parse(isConfigError ? "Rename=5" : "ExecQuery=5");
        RecordingHost host("Internal", "Configure");
        host.fields["Filename"] = scratch.Path();
        machine.files = {scratch.Path()};
        GetToolboxAPI()->DoMagic(&host, &host);
        TakeActions();
        const std::string line =
            std::string("Log 0 Configure::HandleMessage(): caught ") +
            (isConfigError ? "win32 error, err=4" : "general (win32) error, err=80070005");
        const std::size_t count = host.calls.size();
        EXPECT_EQ(host.calls[count - (isConfigError ? 4 : 3)], "SetField Result=Failure");
        EXPECT_EQ(host.calls[count - (isConfigError ? 3 : 4)], line);
    }
}

}  // namespace
