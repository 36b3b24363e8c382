// The module on Wine's own machine, with nothing simulated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/LogSink.h"
#include "host/Message.h"
#include "host/Module.h"
#include "tests/cases/harness/PresentedFile.h"
#include "tests/cases/harness/ThrownErrors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OwnMachine : public testing::Test {
protected:
    void SetUp() override {
        if (GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr) {
            GTEST_SKIP() << "would configure this computer";
        }
    }
    void TearDown() override { std::filesystem::remove(home_); }

    void Send(const std::string& text) {
        const std::filesystem::path file = std::filesystem::absolute("own-machine.ini");
        e2e::WriteFile(file, text);
        home_ = std::filesystem::path(module_.Path()).replace_filename(file.filename());
        host::Message message("Internal", "Configure");
        message.Add("Filename", file.string());
        host::LogSink log([](const host::LogLine&) {});
        const e2e::ThrownErrors thrown(static_cast<HMODULE>(module_.Handle()));
        EXPECT_EQ(module_.Send(message, log), 1);
        errors_ = thrown.Texts();
        result_ = message.ReplyText("Result");
        code_ = message.ReplyText("Status-Code");
        EXPECT_TRUE(std::filesystem::exists(home_));
        EXPECT_TRUE(!std::filesystem::exists(file) || std::filesystem::equivalent(file, home_));
    }

    const host::Module module_{host::Module::DefaultPath()};
    std::filesystem::path home_;
    std::vector<std::string> errors_;
    std::string result_;
    std::string code_;
};

TEST_F(OwnMachine, AFileWithGlobalSettingsAloneSucceeds) {
    Send("[Global]\nRebootAfterConfig=false\n");
    EXPECT_EQ(result_, "Success");
    EXPECT_THAT(errors_, IsEmpty());
}

// Wine's adapters say that they are PCI devices, but its registry knows of none: reading them
// fails. Where Wine has no network at all the section finds no adapter.
TEST_F(OwnMachine, AnAdapterSectionFailsAsItsAdaptersCannotBePlaced) {
    Send(
        "[TCP/IP]\nDescription=Office\nDHCP=true\nDNS-Server-Count=0\n"
        "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=-1\n");
    EXPECT_EQ(result_, "Failure");
    const std::string noDevice =
        "common\\sys\\Registry:813 OpenIntern() - Cannot open key. (error = 2, category = 3)";
    const std::string noAdapter =
        "common\\config\\command\\ConfigureNic:68 ConfigureNic has not been been associated with a "
        "nic index (error = 0)";
    EXPECT_THAT(errors_, testing::AnyOf(ElementsAre(noDevice), ElementsAre(noAdapter)));
    EXPECT_EQ(code_, errors_.front() == noDevice ? "2" : "0");
}

}  // namespace
