// The module on Wine's own machine, with nothing simulated.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "host/LogSink.h"
#include "host/Message.h"
#include "host/Module.h"
#include "tests/requests/harness/ThrownErrors.h"
#include "tests/support/ScratchFolder.h"

namespace {

using testing::ElementsAre;

// Wine's adapters say that they are PCI devices, but its registry knows of none: reading them
// fails. Where Wine has no network at all the section finds no adapter.
TEST(OwnMachine, AnAdapterSectionFailsAsItsAdaptersCannotBePlaced) {
    if (GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr) {
        GTEST_SKIP() << "would configure this computer";
    }
    const support::ScratchFolder scratch;
    const host::Module module(host::Module::DefaultPath());
    host::Message message("Internal", "Configure");
    message.Add("Filename",
                scratch.Write("own-machine.ini",
                              "[TCP/IP]\nDescription=Office\nDHCP=true\nDNS-Server-Count=0\n"
                              "DNS-SuffixSearchOrder=corp.example\nStatic-Route-Count=-1\n"));
    host::LogSink log([](const host::LogLine&) {});
    const requests::ThrownErrors thrown(static_cast<HMODULE>(module.Handle()));
    EXPECT_EQ(module.Send(message, log), 1);
    EXPECT_EQ(message.ReplyText("Result"), "Failure");
    const std::string noDevice =
        "common\\sys\\Registry:813 OpenIntern() - Cannot open key. (error = 2, category = 3)";
    const std::string noAdapter =
        "common\\config\\command\\ConfigureNic:68 ConfigureNic has not been been associated with a "
        "nic index (error = 0)";
    EXPECT_THAT(thrown.Texts(), testing::AnyOf(ElementsAre(noDevice), ElementsAre(noAdapter)));
    EXPECT_EQ(message.ReplyText("Status-Code"), thrown.Texts().front() == noDevice ? "2" : "0");
    EXPECT_TRUE(std::filesystem::remove(
        std::filesystem::path(module.Path()).replace_filename("own-machine.ini")));
}

}  // namespace
