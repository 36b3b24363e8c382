#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "common/err/GeneralError.h"
#include "tests/toolbox/RecordingHost.h"
#include "toolbox/config/MessageHandler.h"

namespace {

using testing::ElementsAre;
using toolbox_tests::RecordingHost;

std::int32_t Send(RecordingHost& host) {
    return GetToolboxAPI()->DoMagic(&host, &host);
}

TEST(Dispatch, ANullMessageIsReportedToTheSinkIfThereIsOne) {
    RecordingHost host("Internal", "UpdateInfo");
    EXPECT_EQ(GetToolboxAPI()->DoMagic(nullptr, nullptr), 0);
    EXPECT_EQ(GetToolboxAPI()->DoMagic(&host, nullptr), 0);
    EXPECT_TRUE(host.calls.empty());
}

TEST(Dispatch, AnErrorOfTheModulesFamilyIsLoggedAndOthersPass) {
    RecordingHost host("Internal", "UpdateInfo");
    host.onReadInteger = [] {
        throw sys::DomainError(" - IsDomainMember returned error ", 73, 9, -5);
    };
    EXPECT_EQ(Send(host), 0);
    ASSERT_EQ(host.calls.size(), 8U);
    EXPECT_EQ(host.calls[6],
              "Log 0 Toolbox-Main:103 Toolbox::DoMagic caught an unhandled exception");
    EXPECT_EQ(
        host.calls[7],
        "Log 0 Exception Details: Domain:73 -  - IsDomainMember returned error  (error = -5)");

    host.onReadInteger = [] { throw std::bad_alloc(); };
    EXPECT_THROW(Send(host), std::bad_alloc);
}

TEST(Dispatch, TheCountOfUpdatesWrapsAround) {
    RecordingHost host("Internal", "UpdateInfo");
    host.fields["Auto-Update-Count"] = "2147483647";
    EXPECT_EQ(Send(host), 2);
    EXPECT_EQ(host.calls.back(), "WriteInteger Auto-Update-Count=-2147483648");
}

TEST(MessageHandler, HandsTheFinishedLineOverAsTheFormat) {
    DefaultHandler handler;
    handler.Log(0, "without a sink");

    RecordingHost host("", "");
    host.keepFormats = true;
    handler.SetHostLog(&host);
    handler.Log(0, nullptr);
    handler.Log(7, "%s is %d%% done", "100%%n", 5);
    handler.Log(2, "%s", "");
    EXPECT_THAT(host.calls, ElementsAre("Log 7 100%%n is 5% done", "Log 2 "));
}

}  // namespace
