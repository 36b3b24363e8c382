#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "host/LogSink.h"
#include "host/Message.h"
#include "host/Module.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// The module that ships, loaded from beside this program, and the lines it logs.
class Frame : public testing::Test {
protected:
    std::int32_t Send(host::Message& message) { return module_.Send(message, sink_); }

    ToolboxAPI* Api() const {
        const auto entry = reinterpret_cast<ToolboxAPI* (*)()>(reinterpret_cast<void*>(
            GetProcAddress(static_cast<HMODULE>(module_.Handle()), "GetToolboxAPI")));
        return entry();
    }

    const host::Module module_{host::Module::DefaultPath()};
    std::vector<std::string> lines_;
    host::LogSink sink_{[this](const host::LogLine& line) {
        lines_.push_back(std::to_string(line.level) + " " + line.text);
    }};
};

/// Where the module puts a configuration file away: beside this program, as its host.
std::string PutAwayPath(const std::string& name) {
    const std::string module = host::Module::DefaultPath();
    return module.substr(0, module.find_last_of("\\/") + 1) + name;
}

TEST_F(Frame, KindsAndNamesThatAreNotForThisModule) {
    const std::tuple<const char*, const char*, std::int32_t> cases[] = {
        {"Internal", "configure", 2}, {"Request", "Configure", 2}, {"Reply", "", 2},
        {"internal", "Configure", 0}, {"%s%n", "100%", 0},         {"", "", 0},
    };
    for (const auto& [kind, name, result] : cases) {
        lines_.clear();
        host::Message message(kind, name);
        EXPECT_EQ(Send(message), result);
        EXPECT_THAT(message.Reply(), IsEmpty());
        EXPECT_THAT(lines_, ElementsAre(std::string("1 Toolbox-Main:77 Toolbox::DoMagic - Finding "
                                                    "handler for ") +
                                        kind + "=" + name));
    }
}

TEST_F(Frame, TheRecordIsTheSameOnEveryCallAndTakesNullArguments) {
    EXPECT_EQ(Api(), Api());
    host::Message message("Internal", "UpdateInfo");
    EXPECT_EQ(Api()->DoMagic(nullptr, nullptr), 0);
    EXPECT_EQ(Api()->DoMagic(&message, nullptr), 0);
    EXPECT_THAT(message.Reply(), IsEmpty());
    EXPECT_THAT(lines_, IsEmpty());
}

TEST_F(Frame, ErrorsOnManyThreadsAtOnceLeaveTheLastErrorOfEach) {
    constexpr DWORD kThreads = 40;
    std::atomic<DWORD> right = 0;
    std::vector<std::thread> threads;
    for (DWORD i = 1; i <= kThreads; ++i) {
        threads.emplace_back([&right, i, api = Api()] {
            SetLastError(i);
            right += api->DoMagic(nullptr, nullptr) == 0 && GetLastError() == i ? 1 : 0;
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(right, kThreads);
}

TEST_F(Frame, AMissingFileIsLoggedAsItIsNamed) {
    for (const std::string name :
         {"100%n%s.ini", "", ".", "no\\such\\folder\\x.ini", "a\"b?.ini"}) {
        lines_.clear();
        host::Message message("Internal", "Configure");
        message.Add("Filename", name);
        EXPECT_EQ(Send(message), 0);
        EXPECT_THAT(message.Reply(), IsEmpty());
        EXPECT_THAT(lines_, Contains("0 Configure::HandleMessage(): config file=" + name));
        EXPECT_THAT(lines_,
                    Contains("0 Configure::HandleMessage(): File " + name + " does not exist"));
    }
}

TEST_F(Frame, AFileWithoutSettingsSucceedsAndIsPutAway) {
    using namespace std::string_literals;
    const std::string putAway = PutAwayPath("frame%d.ini");
    const std::string contents[] = {""s,
                                    "["s,
                                    "\0"s,
                                    "; comment"s,
                                    "\xEF\xBB\xBF"s,
                                    "[Global]\r\nRebootAfterConfig=FALSE\r\n"s,
                                    "[networking]\n"s};
    for (const std::string& content : contents) {
        std::ofstream("frame%d.ini", std::ios::binary) << content;
        host::Message message("Internal", "Configure");
        message.Add("Filename", "frame%d.ini");
        EXPECT_EQ(Send(message), 1);
        EXPECT_EQ(message.ReplyText("Result"), "Success");
        EXPECT_EQ(message.Reply().size(), 1U);
        EXPECT_FALSE(std::ifstream("frame%d.ini").is_open());
        EXPECT_EQ(std::remove(putAway.c_str()), 0);
    }
}

/// A message whose host fails in the middle of a call.
class FailingMessage final : public IHostMessage {
public:
    explicit FailingMessage(void (*fail)()) : fail_(fail) {}

    void WriteInteger(const char*, std::int32_t) override { fail_(); }
    void WriteText(const char*, const char*) override { fail_(); }
    void SetField(const char*, const char*) override { fail_(); }
    const char* GetKind() override { return "Internal"; }
    const char* GetName() override { return "UpdateInfo"; }
    const char* GetField(const char*) override { return ""; }
    void ReadInteger(const char*, std::int32_t*) override { fail_(); }

private:
    void (*fail_)();
};

TEST_F(Frame, ErrorsThatAreNotTheModulesPassThroughIt) {
    FailingMessage noMemory([] { throw std::bad_alloc(); });
    EXPECT_THROW(Api()->DoMagic(&noMemory, &sink_), std::bad_alloc);
    FailingMessage invalid([] { throw std::invalid_argument("odd"); });
    EXPECT_THROW(Api()->DoMagic(&invalid, &sink_), std::invalid_argument);
    // The module is as good as before.
    host::Message message("Internal", "UpdateInfo");
    EXPECT_EQ(Send(message), 2);
}

}  // namespace
