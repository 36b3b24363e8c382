// A whole configuration request, through the module's door, on the machine in memory: what only
// sanitizers or an order of calls can show. What requests come to is seen on simulated machines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "tests/native/OnMachine.h"
#include "tests/toolbox/RecordingHost.h"
#include "tests/toolbox/ScratchFile.h"

namespace {

using fake::OnMachine;
using testing::ElementsAre;
using toolbox_tests::RecordingHost;
using toolbox_tests::ScratchFile;

const std::string kFile = "site.ini";
const std::string kAway = "C:\\agent\\site.ini";

class ConfigureRequest : public OnMachine {
protected:
    /// Hands the file to the module; what it was answered.
    std::vector<std::string> Configure() {
        RecordingHost host("Internal", "Configure");
        host.fields["Filename"] = kFile;
        machine.files = {kFile};
        GetToolboxAPI()->DoMagic(&host, &host);
        TakeChanges();
        return host.calls;
    }
};

TEST_F(ConfigureRequest, AConfigErrorIsAnsweredBeforeItIsLoggedAndAnotherAfter) {
    const ScratchFile scratch("[Networking]\nComputerName=PC9", kFile);
    for (const bool isConfigError : {true, false}) {
        machine.onCall["getComputerName"] = [isConfigError] {
            if (isConfigError) {
                throw config::ConfigError("x", "y", 1, 5);
            }
            throw sys::CWmiError("y", 1, 5, 0);
        };
        const std::vector<std::string> calls = Configure();
        const std::string line = std::string("Log 0 Configure::HandleMessage(): caught ") +
                                 (isConfigError ? "win32" : "general (win32)") + " error, err=5";
        EXPECT_EQ(calls[calls.size() - (isConfigError ? 4 : 3)], "SetField Result=Failure");
        EXPECT_EQ(calls[calls.size() - (isConfigError ? 3 : 4)], line);
    }
}

// Whatever call fails, in whatever way: a proper answer or the error passed on, the file put away
// or kept as the answer says, the password nowhere.
TEST_F(ConfigureRequest, EndsProperlyWhateverCallFails) {
    MakeMember();
    const ScratchFile scratch(
        "[TCP/IP]\nDescription=lan\nDHCP=false\nAddress=10.0.0.1\nNetmask=255.0.0.0\n"
        "Gateway=10.0.0.254\nDNS-Server-Count=1\nDNS-Server0=dns.example\n"
        "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=1\nRoute0=10.0.0.0,255.0.0.0,10.0.0.9,x,5,\n"
        "[Networking]\nDomainUsername=eoj\nDomainPassword=terces\n"
        "Workgroup=no\nDNSDomain=other.example\nDSOrganizationalUnit=West\n",
        kFile);
    machine.hostNames["dns.example"] = "10.0.0.53";
    machine.routes = {fake::Route("11.0.0.0", "255.0.0.0", "10.0.0.9", 1)};
    for (const bool ofTheFamily : {true, false}) {
        std::size_t calls = 0;
        bool struck = true;
        for (std::size_t failing = 1; struck; ++failing) {
            calls = 0;
            machine.onEveryCall = [&] {
                if (++calls == failing) {
                    if (!ofTheFamily) {
                        throw std::bad_alloc();
                    }
                    throw sys::CWmiError("failed", 1, 5, 0);
                }
            };
            std::vector<std::string> answer = {"passed on"};
            try {
                answer = Configure();
            } catch (const std::bad_alloc&) {
                TakeChanges();
            }
            struck = calls >= failing;
            std::erase_if(answer, [](const std::string& call) {
                EXPECT_EQ(call.find("secret"), std::string::npos) << call;
                return call.starts_with("Get") || call.starts_with("Log");
            });
            EXPECT_EQ(machine.heldPassword, "") << failing;
            EXPECT_EQ(machine.loadedLibraries, 0) << failing;
            if (!struck) {
                EXPECT_THAT(answer, ElementsAre("SetField Result=Reboot"));
                EXPECT_THAT(machine.files, ElementsAre(kFile));
            } else if (ofTheFamily) {
                EXPECT_THAT(answer,
                            ElementsAre("SetField Result=Failure", "SetField Status-Module=Win32",
                                        "SetField Status-Code=5"));
                EXPECT_THAT(machine.files, ElementsAre(kAway)) << failing;
            } else {
                EXPECT_THAT(answer, ElementsAre("passed on")) << failing;
            }
        }
        EXPECT_GT(calls, 15U);
    }
}

}  // namespace
