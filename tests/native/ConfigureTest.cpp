// A whole configuration request, through the module's door, on the machine in memory: what only
// sanitizers or an order of calls can show. What requests come to is seen on simulated machines.
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
using toolbox_tests::RecordingHost;
using toolbox_tests::ScratchFile;

const std::string kFile = "site.ini";
const std::string kAway = "C:\\agent\\site.ini";

struct Answer {
    std::int32_t result = -1;
    std::string reply;  // "Result=Failure Status-Module=Win32 Status-Code=5"
};

class ConfigureRequest : public OnMachine {
protected:
    static void Take(const RecordingHost& host, Answer& answer) {
        for (const std::string& call : host.calls) {
            if (call.starts_with("SetField ")) {
                answer.reply += (answer.reply.empty() ? "" : " ") + call.substr(9);
            }
        }
    }

    void TearDown() override {
        OnMachine::TearDown();
        EXPECT_EQ(machine.heldPassword, "");
        EXPECT_EQ(machine.loadedLibraries, 0);
    }
};

const std::string kCredentials = "DomainUsername=eoj\nDomainPassword=terces\n";  // joe, secret

TEST_F(ConfigureRequest, AConfigErrorIsAnsweredBeforeItIsLoggedAndAnotherAfter) {
    for (const bool isConfigError : {true, false}) {
        machine.onCall["getComputerName"] = [isConfigError] {
            if (isConfigError) {
                throw config::ConfigError("x", "y", 1, 5);
            }
            throw sys::CWmiError("y", 1, 5, 0);
        };
        const ScratchFile scratch("[Networking]\nComputerName=PC9", kFile);
        machine.files = {kFile};
        RecordingHost host("Internal", "Configure");
        host.fields["Filename"] = kFile;
        GetToolboxAPI()->DoMagic(&host, &host);
        TakeChanges();
        const std::size_t count = host.calls.size();
        const std::string line = std::string("Log 0 Configure::HandleMessage(): caught ") +
                                 (isConfigError ? "win32" : "general (win32)") + " error, err=5";
        EXPECT_EQ(host.calls[count - (isConfigError ? 4 : 3)], "SetField Result=Failure");
        EXPECT_EQ(host.calls[count - (isConfigError ? 3 : 4)], line);
    }
}

// Whatever call fails, in whatever way: a proper answer or the error passed on, the file put away
// or kept as the answer says, the password nowhere. (TearDown looks at what is still held.)
TEST_F(ConfigureRequest, EndsProperlyWhateverCallFails) {
    MakeMember();
    const std::string text =
        "[TCP/IP]\nDescription=lan\nDHCP=false\nAddress=10.0.0.1\nNetmask=255.0.0.0\n"
        "Gateway=10.0.0.254\nDNS-Server-Count=1\nDNS-Server0=dns.example\n"
        "DNS-SuffixSearchOrder=a.b\nStatic-Route-Count=1\nRoute0=10.0.0.0,255.0.0.0,10.0.0.9,x,5,\n"
        "[Networking]\n" +
        kCredentials +
        "Workgroup=no\nDNSDomain=other.example\n"
        "DSOrganizationalUnit=West\n";
    const ScratchFile scratch(text, kFile);
    machine.hostNames["dns.example"] = "10.0.0.53";
    machine.routes = {fake::Route("11.0.0.0", "255.0.0.0", "10.0.0.9", 1)};

    struct Outcomes {
        std::size_t calls = 0;
        std::size_t failures = 0;
        std::size_t passedOn = 0;
    };
    const auto sweep = [&](bool ofTheFamily, bool stays) {
        Outcomes outcomes;
        for (std::size_t failing = 1;; ++failing) {
            std::size_t calls = 0;
            machine.files = {kFile};
            machine.onEveryCall = [&] {
                ++calls;
                if (calls == failing || (stays && calls > failing)) {
                    if (!ofTheFamily) {
                        throw std::bad_alloc();
                    }
                    throw sys::CWmiError("failed", 1, 5, 0);
                }
            };
            RecordingHost host("Internal", "Configure");
            host.fields["Filename"] = kFile;
            Answer answer;
            try {
                answer.result = GetToolboxAPI()->DoMagic(&host, &host);
            } catch (const std::bad_alloc&) {
                EXPECT_FALSE(ofTheFamily);
                ++outcomes.passedOn;
            }
            Take(host, answer);
            TakeChanges();
            for (const std::string& call : host.calls) {
                EXPECT_EQ(call.find("secret"), std::string::npos) << call;
            }
            EXPECT_EQ(machine.heldPassword, "") << failing;
            EXPECT_EQ(machine.loadedLibraries, 0) << failing;
            if (answer.reply == "Result=Reboot") {
                EXPECT_EQ(machine.files, std::set<std::string>{kFile}) << failing;
                EXPECT_LT(calls, failing) << "a failure did no harm";
                outcomes.calls = calls;
                return outcomes;
            }
            if (answer.result == 1) {
                EXPECT_EQ(answer.reply, "Result=Failure Status-Module=Win32 Status-Code=5");
                EXPECT_EQ(machine.files, std::set<std::string>{kAway}) << failing;
                ++outcomes.failures;
            }
        }
    };
    for (const bool stays : {false, true}) {
        const Outcomes family = sweep(true, stays);
        const Outcomes other = sweep(false, stays);
        EXPECT_GT(family.calls, 15U);
        EXPECT_EQ(family.failures, stays ? 0 : family.calls);  // the file could not be put away
        EXPECT_EQ(other.passedOn, family.calls);
        EXPECT_EQ(other.failures, 0U);
    }
}

}  // namespace
