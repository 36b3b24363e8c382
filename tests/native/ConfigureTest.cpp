// The whole of a configuration request, through the module's door, on the machine in memory.
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
const std::string kMoved = "MoveFile(site.ini, C:\\agent\\site.ini)";

struct Answer {
    std::int32_t result = -1;
    std::vector<std::string> log;  // "0 text"
    std::string reply;             // "Result=Failure Status-Module=Win32 Status-Code=5"
    std::string changes;           // the putting away of the file included
};

class ConfigureRequest : public OnMachine {
protected:
    /// Sends the request for a file of that text.
    Answer Configure(const std::string& text, const std::string& path = kFile) {
        const ScratchFile scratch(text, path);
        machine.files.insert(path);
        return ConfigureFile(path);
    }

    Answer ConfigureFile(const std::string& path) {
        RecordingHost host("Internal", "Configure");
        host.fields["Filename"] = path;
        Answer answer;
        answer.result = GetToolboxAPI()->DoMagic(&host, &host);
        Take(host, answer);
        answer.changes = TakeChanges();
        return answer;
    }

    static void Take(const RecordingHost& host, Answer& answer) {
        for (const std::string& call : host.calls) {
            if (call.starts_with("Log ")) {
                answer.log.push_back(call.substr(4));
            } else if (call.starts_with("SetField ")) {
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

TEST_F(ConfigureRequest, ForAMissingFileAnswersNothing) {
    const Answer answer = ConfigureFile("100%n.ini");
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.reply, "");
    EXPECT_EQ(answer.changes, "");
    EXPECT_THAT(answer.log,
                ElementsAre("1 Toolbox-Main:77 Toolbox::DoMagic - Finding handler for "
                            "Internal=Configure",
                            "1 Configure::HandleMessage",
                            "0 Configure::HandleMessage(): config file=100%n.ini",
                            "0 Configure::HandleMessage(): File 100%n.ini does not exist"));
}

TEST_F(ConfigureRequest, LogsItsStepsInOrder) {
    MakeMember();
    const Answer answer = Configure(
        "[Networking]\n" + kCredentials +
            "DSOrganizationalUnit=100%n\n[TCP/IP]\nDescription=lan\nDHCP=false\nAddress=10.0.0.1\n"
            "Netmask=255.0.0.0\nGateway=10.0.0.254\nDNS-Server-Count=0\n"
            "DNS-SuffixSearchOrder=%s.example\nStatic-Route-Count=1\n"
            "Route0=10.0.0.0,255.0.0.0,10.0.0.9,x,5,\n",
        "%s%n.ini");
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.reply, "Result=Success");
    EXPECT_EQ(answer.changes,
              "MoveOu(100%n, joe:secret); enableStatic(7, 10.0.0.1, 255.0.0.0); Pause(8000); "
              "setGateways(7, 10.0.0.254); setDnsSuffixSearchOrder(%s.example); RunCommand(route "
              "-p ADD 10.0.0.0 mask 255.0.0.0 10.0.0.9 METRIC 5); MoveFile(%s%n.ini, "
              "C:\\agent\\%s%n.ini)");
    const std::string run =
        "2 ConfigBuilder::RunConfig(): about to execute class config::command::";
    const std::string nic = "2 ConfigureNic::Execute(): about to execute class config::command::";
    EXPECT_THAT(
        answer.log,
        ElementsAre(
            "1 Toolbox-Main:77 Toolbox::DoMagic - Finding handler for Internal=Configure",
            "1 Configure::HandleMessage", "0 Configure::HandleMessage(): config file=%s%n.ini",
            "1 Configure::HandleMessage(): about to call ConfigEvent()",
            "1 Configure::HandleMessage(): about to call Analyze() and RunConfig()",
            run + "MoveOu (OU=100%n)", run + "ConfigureNic ()",
            "2 ConfigureNic::Execute(): NIC index (Win32_NetworkAdapterConfiguration.Index)=7",
            nic + "SetStatic (IP and Subnet Masks: {ip=10.0.0.1,mask=255.0.0.0})",
            nic + "Sleep (Duration=8000 milliseconds)", nic + "SetGateway (Gateways=10.0.0.254)",
            nic + "SetDnsSuffix (DNS Suffixes=%s.example)", run + "SetStaticRoute ()"));
}

TEST_F(ConfigureRequest, AnswersAndPutsTheFileAway) {
    struct RequestCase {
        const char* what;
        std::string text;
        std::string reply;
        std::string changes;  // before the file is put away
        bool away = true;
    };
    const std::string nothing = "Result=Failure Status-Module=Win32 Status-Code=";
    const std::string tcp = "[TCP/IP]\nDescription=lan\n";
    const std::string dhcp = tcp + "DHCP=true\nDNS-Server-Count=0\n";
    const RequestCase cases[] = {
        {"an empty file", "", "Result=Success", ""},
        {"no section of ours", "[Global]\nRebootAfterConfig=false\n[Other]\nDHCP=true",
         "Result=Success", ""},
        {"a rename", "[Networking]\nComputerName=PC9", "Result=Reboot", "renameComputer(PC9, :); ",
         false},
        {"a rename whose restart is not to be reported",
         "[global]\nREBOOTAFTERCONFIG = FALSE\n[Networking]\nComputerName=PC9",
         "Result=Failure Status-Module=Tovrune Status-Code=3", "renameComputer(PC9, :); "},
        {"a restart that is not suppressed",
         "[Global]\nRebootAfterConfig=no\n[Networking]\n"
         "ComputerName=PC9",
         "Result=Reboot", "renameComputer(PC9, :); ", false},
        {"nothing to restart for",
         "[Global]\nRebootAfterConfig=false\n[Networking]\nWorkgroup=True\n"
         "Domain=SALES",
         "Result=Success", "JoinWorkgroup(SALES, :); "},
        {"rename and join, of which the rename runs first",
         "[Networking]\n" + kCredentials +
             "Workgroup=no\nDNSDomain=d.e\nDSOrganizationalUnit=East\nComputerName=PC9",
         "Result=Reboot", "renameComputer(PC9, joe:secret); ", false},
        {"the join, after the restart",
         "[Networking]\n" + kCredentials +
             "Workgroup=no\nDNSDomain=d.e\nDSOrganizationalUnit=East\nComputerName=PC1",
         "Result=Reboot", "JoinDomainAndOu(d.e, East, joe:secret); ", false},
        {"a workgroup, which silences the unit",
         "[Networking]\nWorkgroup=true\nDomain=SALES\nDSOrganizationalUnit=East", "Result=Success",
         "JoinWorkgroup(SALES, :); "},
        {"an adapter section without Description ends the bottom scope",
         "[TCP/IP]\nDHCP=true\n[Networking]\nComputerName=PC9", nothing + "1", ""},
        {"twice that", "[NicEntry1]\n[NicEntry2]\n", nothing + "1", ""},
        {"once that, and nothing behind it", "[NicEntry1]\n", "Result=Success", ""},
        {"a DHCP adapter without suffixes gets the text before them", dhcp, "Result=Success",
         "enableDhcp(7); setDnsSuffixSearchOrder(0); "},
        {"DHCP twice: two adapters",
         dhcp + "DNS-SuffixSearchOrder=a\n[NicEntry]\nDescription=x\nDHCP=true\n"
                "DNS-Server-Count=1\nDNS-Server0=10.0.0.53\nDNS-SuffixSearchOrder=a",
         "Result=Success",
         "enableDhcp(7); setDnsSuffixSearchOrder(a); enableDhcp(9); setDnsServerSearchOrder(9, "
         "10.0.0.53); setDnsSuffixSearchOrder(a); "},
        {"three adapters on a machine with two",
         "[NicEntry1]\nDescription=a\nDHCP=true\nDNS-Server-Count=1\n[NicEntry2]\nDescription=b\n"
         "DHCP=true\nDNS-Server-Count=1\n[NicEntry3]\nDescription=c\nDHCP=true\nDNS-Server-Count=1",
         nothing + "0", "enableDhcp(7); enableDhcp(9); "},
        {"no DHCP key means static, with the label as its address",
         "[TCP/IP]\nDescription=10.0.0.7\nGateway=10.0.0.1\nDNS-Server-Count=1", "Result=Success",
         "enableStatic(7, 10.0.0.7, 10.0.0.7); Pause(8000); setGateways(7, 10.0.0.1); "},
        {"a label that is no host", tcp, nothing + "11001", ""},
        {"negative counts mean none",
         dhcp + "DNS-SuffixSearchOrder=a\nStatic-Route-Count=-5\nDNS-Server-Count=-1",
         "Result=Success", "enableDhcp(7); setDnsSuffixSearchOrder(a); "},
        {"a count out of range", dhcp + "Static-Route-Count=100001", nothing + "87", ""},
        {"a count of DNS servers out of range", tcp + "DHCP=true\nDNS-Server-Count=100001",
         nothing + "87", ""},
    };
    for (const RequestCase& test : cases) {
        machine.files.clear();
        const Answer answer = Configure(test.text);
        EXPECT_EQ(answer.result, 1) << test.what;
        EXPECT_EQ(answer.reply, test.reply) << test.what;
        EXPECT_EQ(machine.files, std::set<std::string>{test.away ? kAway : kFile}) << test.what;
        if (test.away) {
            EXPECT_EQ(answer.changes, test.changes + kMoved) << test.what;
        } else {
            EXPECT_EQ(answer.changes + "; ", test.changes) << test.what;
        }
    }
}

TEST_F(ConfigureRequest, TakesTheHighestCount) {
    Adapter(7).dhcpEnabled = true;
    const Answer answer = Configure(
        "[TCP/IP]\nDescription=x\nDHCP=true\nDNS-Server-Count=100000\nDNS-Server99999=10.0.0.53\n"
        "DNS-SuffixSearchOrder=a\nStatic-Route-Count=100000\nRoute0=10.0.0.0,");
    EXPECT_EQ(answer.reply, "Result=Success");
    EXPECT_EQ(std::count(answer.changes.begin(), answer.changes.end(), ';'), 2 + 100000);
}

TEST_F(ConfigureRequest, ReportsErrorsByTheirKind) {
    struct ErrorCase {
        std::function<void()> raise;
        std::string code;
        std::string line;
    };
    const ErrorCase cases[] = {
        {[] { throw config::ConfigError("x", "y", 1, 5, 99); }, "5",
         "Configure::HandleMessage(): caught win32 error, err=5"},
        {[] { throw config::ConfigError("x", "y", 1, 1332); }, "1332",
         "Configure::HandleMessage(): caught win32 error, err=534"},
        {[] { throw config::ConfigError("x", "y", 1, -1); }, "-1",
         "Configure::HandleMessage(): caught win32 error, err=ffffffff"},
        {[] { throw sys::CWmiError("y", 1, -2147217405, 5); }, "-2147217405",
         "Configure::HandleMessage(): caught general (win32) error, err=80041003"},
        {[] { throw sys::DomainError("y", 1, 2, 1326); }, "1326",
         "Configure::HandleMessage(): caught general (win32) error, err=52e"},
        {[] { throw proc::ChildProcessError("y", 1, 2, 8); }, "8",
         "Configure::HandleMessage(): caught general (win32) error, err=8"},
    };
    for (const ErrorCase& test : cases) {
        machine.files.clear();
        machine.onCall["getComputerName"] = test.raise;
        const Answer answer = Configure("[Networking]\nComputerName=PC9");
        EXPECT_EQ(answer.result, 1);
        EXPECT_EQ(answer.reply, "Result=Failure Status-Module=Win32 Status-Code=" + test.code);
        EXPECT_EQ(answer.log.back(), "0 " + test.line);
        EXPECT_EQ(answer.changes, kMoved);
    }
}

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

TEST_F(ConfigureRequest, FindsThePlaceToPutTheFile) {
    struct PlaceCase {
        const char* what;
        std::string path;
        std::string executable;
        std::vector<std::string> alsoThere;
        std::string changes;
    };
    const std::string folder = "ConfigureTest-folder/";
    const PlaceCase cases[] = {
        {"a file of that name is replaced",
         kFile,
         "C:\\agent\\agent.exe",
         {kAway},
         "DeleteFile(C:\\agent\\site.ini); " + kMoved},
        {"either separator",
         kFile,
         "C:/agent/agent.exe",
         {},
         "MoveFile(site.ini, C:/agent\\site.ini)"},
        {"an executable without folder", kFile, "agent.exe", {}, "MoveFile(site.ini, \\site.ini)"},
        {"it stands there", "C:\\agent\\site.ini", "C:\\agent\\agent.exe", {}, ""},
        {"it stands there under another spelling",
         "c:/AGENT/site.ini",
         "C:\\agent\\agent.exe",
         {kAway},
         ""},
    };
    for (const PlaceCase& test : cases) {
        machine.files = {test.alsoThere.begin(), test.alsoThere.end()};
        machine.files.insert(test.path);
        machine.executable = test.executable;
        const Answer answer = ConfigureFile(test.path);  // cannot be read: nothing to do
        EXPECT_EQ(answer.reply, "Result=Success") << test.what;
        EXPECT_EQ(answer.changes, test.changes) << test.what;
    }
}

TEST_F(ConfigureRequest, AFileThatCannotBePutAwayIsThrownOnAfterItsReport) {
    machine.onCall["MoveFile"] = [] { throw util::CFileIOError("File Move Failed ", 104, 32); };
    const Answer answer = Configure("");
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.reply, "Result=Success Result=Failure Status-Module=Win32 Status-Code=32");
    EXPECT_EQ(answer.changes, kMoved + "; " + kMoved);
    ASSERT_GE(answer.log.size(), 2U);
    EXPECT_EQ(answer.log.back(),
              "0 Exception Details: common\\util\\FileUtils:104 - File Move Failed  (error = 32)");
}

TEST_F(ConfigureRequest, DeciphersWithOneLibraryThatItReleases) {
    const std::string text = "[Networking]\n" + kCredentials + "ComputerName=PC9";
    EXPECT_EQ(Configure(text).changes, "renameComputer(PC9, joe:secret)");
    const auto times = [this](const char* call) {
        return std::count(machine.queries.begin(), machine.queries.end(), call);
    };
    EXPECT_EQ(times("Load(LibCrypto.dll)"), 1);
    EXPECT_EQ(times("GetProcAddress(Decrypt)"), 1);

    machine.queries.clear();
    EXPECT_EQ(Configure("[Networking]\nDomainUsername=\nDomainPassword=\nComputerName=PC9").changes,
              "renameComputer(PC9, :)");
    EXPECT_EQ(times("Load(LibCrypto.dll)"), 0);

    machine.hasCryptoLibrary = false;
    const Answer answer = Configure(text);
    EXPECT_EQ(answer.reply, "Result=Failure Status-Module=Win32 Status-Code=126");
    EXPECT_EQ(answer.changes, kMoved);
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
