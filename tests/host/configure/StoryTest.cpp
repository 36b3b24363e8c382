// What can be told of a run on a real machine: there are the log and the reply, and no calls.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/configure/Announcement.h"
#include "host/configure/Plan.h"
#include "host/configure/Steps.h"
#include "host/reading/SettingNames.h"
#include "tests/host/configure/Support.h"

namespace {

using namespace host::configure;
using configure_tests::Files;

constexpr const char* kRun = "ConfigBuilder::RunConfig(): about to execute class config::command::";
constexpr const char* kNic = "ConfigureNic::Execute(): about to execute class config::command::";
constexpr const char* kIndex =
    "ConfigureNic::Execute(): NIC index (Win32_NetworkAdapterConfiguration.Index)=";

/// A run that has logged these lines and answered so.
Run MakeRun(const std::vector<std::string>& lines, const std::string& result,
            const std::string& module = {}, const std::string& code = {}) {
    Run run;
    run.log.push_back({{1, "Configure::HandleMessage(): about to call Analyze() and RunConfig()"},
                       0,
                       std::nullopt});
    for (const std::string& line : lines) {
        run.log.push_back(
            {{line.starts_with("Configure::") ? 0U : kProgressLevel, line}, 0, std::nullopt});
    }
    run.result = 1;
    run.reply.push_back({"Result", result});
    if (!module.empty()) {
        run.reply.push_back({"Status-Module", module});
        run.reply.push_back({"Status-Code", code});
    }
    run.before = machine::DefaultState();
    run.after = run.before;
    return run;
}

/// "addresses:already-set gateways:change": what asks for something.
std::string Fates(const std::vector<Setting>& settings, const Run& run) {
    std::string text;
    for (const Row& row : MakeRows(settings, run, ReadStory(run), nullptr)) {
        if (row.fate != Fate::kLabel && row.fate != Fate::kLeftAlone) {
            text += (text.empty() ? "" : " ") + std::string(Identifier(row.setting.kind)) + ":" +
                    Identifier(row.fate);
        }
    }
    return text;
}

std::vector<Setting> Settings() {
    const Files files;
    return SettingsOf(host::reading::File::Read(files.Write(
        "story.ini",
        "[NicEntry1]\nDescription=a\nDHCP=no\nAddress=10.0.0.1\nNetmask=255.0.0.0\n"
        "Gateway=10.0.0.2\nDNS-Server-Count=1\nDNS-Server0=10.0.0.3\nDNS-SuffixSearchOrder=x\n"
        "Static-Route-Count=-1\n"
        "[Networking]\nWorkgroup=false\nDNSDomain=corp.example\nComputerName=PC7\n"
        "[NicEntry2]\nDescription=b\nDHCP=true\nDNS-Server-Count=0\nDNS-SuffixSearchOrder=x\n"
        "Static-Route-Count=-1\n")));
}

const std::string kFirstNic = std::string(kRun) + "ConfigureNic ()";
const std::string kFirstIndex = std::string(kIndex) + "1";

TEST(Story, FatesFollowFromTheLogAlone) {
    struct Case {
        const char* name;
        host::configure::Run run;
        std::string fates;
    };
    const Case cases[] = {
        {"all done",
         MakeRun({kFirstNic, kFirstIndex, std::string(kNic) + "SetGateway (Gateways=10.0.0.2)",
                  std::string(kRun) + "ChangeCompName (Name=PC7 {User=***})", kFirstNic,
                  std::string(kIndex) + "2"},
                 "Success"),
         "addresses:already-set gateways:change dns-servers:already-set dns-suffixes:already-set "
         "domain:already-set computer-name:change dhcp:already-set dns-suffixes:already-set"},
        {"failed in the first section: what comes before is set, what comes after is open",
         MakeRun({kFirstNic, kFirstIndex, std::string(kNic) + "SetGateway (Gateways=10.0.0.2)",
                  "Configure::HandleMessage(): caught win32 error, err=4"},
                 "Failure", "Win32", "4"),
         "addresses:already-set gateways:failed dns-servers:not-attempted "
         "dns-suffixes:not-attempted domain:not-attempted computer-name:not-attempted "
         "dhcp:not-attempted dns-suffixes:not-attempted"},
        {"stopped after the rename: the join comes after it",
         MakeRun(
             {kFirstNic, kFirstIndex, std::string(kRun) + "ChangeCompName (Name=PC7 {User=***})"},
             "Reboot"),
         "addresses:already-set gateways:already-set dns-servers:already-set "
         "dns-suffixes:already-set domain:waits computer-name:change dhcp:waits "
         "dns-suffixes:waits"},
        {"nothing ran",
         MakeRun({"Configure::HandleMessage(): caught general (win32) error, err=5"}, "Failure",
                 "Win32", "5"),
         "addresses:not-attempted gateways:not-attempted dns-servers:not-attempted "
         "dns-suffixes:not-attempted domain:not-attempted computer-name:not-attempted "
         "dhcp:not-attempted dns-suffixes:not-attempted"},
    };
    const std::vector<Setting> settings = Settings();
    for (const Case& tried : cases) {
        EXPECT_EQ(Fates(settings, tried.run), tried.fates) << tried.name;
    }
}

TEST(Story, FailuresWithoutCallsSayWhatIsKnown) {
    const std::string caught = "Configure::HandleMessage(): caught win32 error, err=4";
    const std::string caughtGeneral =
        "Configure::HandleMessage(): caught general (win32) error, err=80041003";
    struct Case {
        const char* name;
        host::configure::Run run;
        Stage stage;
        bool stepFailed;
        const char* text;
    };
    const Case cases[] = {
        {"a method",
         MakeRun({kFirstNic, kFirstIndex, std::string(kNic) + "SetDhcp ()", caught}, "Failure",
                 "Win32", "4"),
         Stage::kRunning, true, "the method did not succeed"},
        {"no adapter", MakeRun({kFirstNic, caught}, "Failure", "Win32", "0"), Stage::kRunning, true,
         "the machine has no PCI adapter left for this section"},
        {"WMI", MakeRun({caughtGeneral}, "Failure", "Win32", "-2147217405"), Stage::kAnalysing,
         false, "WMI: access denied"},
    };
    for (const Case& tried : cases) {
        const Story story = ReadStory(tried.run);
        ASSERT_TRUE(story.failure) << tried.name;
        EXPECT_EQ(story.failure->stage, tried.stage) << tried.name;
        EXPECT_EQ(story.failure->step.has_value(), tried.stepFailed) << tried.name;
        EXPECT_EQ(story.failure->text, tried.text) << tried.name;
    }
    host::configure::Run missing = MakeRun({}, "");
    missing.reply.clear();
    missing.result = 0;
    EXPECT_EQ(ReadStory(missing).failure->text, "the module did not handle the message");
    missing.moduleError = "the module failed: bad_alloc";
    EXPECT_EQ(ReadStory(missing).failure->text, missing.moduleError);
}

}  // namespace
