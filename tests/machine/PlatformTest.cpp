// The platform calls beside WMI, as a program makes them.
#include <windows.h>

#include <gtest/gtest.h>
#include <lm.h>
#include <objbase.h>

#include <array>
#include <atomic>
#include <thread>

#include "machine/Call.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class PlatformTest : public SimulatedTest {};

TEST_F(PlatformTest, WhatTheMachineDoesNotHaveIsReported) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key),
              ERROR_INVALID_HANDLE);
    LPBYTE buffer = nullptr;
    EXPECT_EQ(NetWkstaGetInfo(nullptr, 102, &buffer), static_cast<DWORD>(ERROR_INVALID_LEVEL));
    const auto unexpected = simulation_.TakeUnexpected();
    ASSERT_EQ(unexpected.size(), 2U);
    EXPECT_EQ(unexpected[0],
              "call 1, RegOpenKeyExA: a root key other than HKEY_LOCAL_MACHINE or an open key");
    EXPECT_EQ(unexpected[1], "call 2, NetWkstaGetInfo: a level other than 100");
}

[[gnu::noinline]] HRESULT StartAndEndCom() {
    const HRESULT result = CoInitialize(nullptr);
    CoUninitialize();
    return result;
}

[[gnu::noinline]] LSTATUS OpenUsersKey() {
    HKEY key = nullptr;
    const LSTATUS result = RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key);
    RegCloseKey(key);
    return result;
}

TEST(SimulationLifetime, OneAtATimeAndAsManyAsWanted) {
    for (int i = 0; i < 4; ++i) {
        Simulation simulation(DefaultState());
        EXPECT_THROW(Simulation another(DefaultState()), std::logic_error);
        simulation.Attach(GetModuleHandleA(nullptr));
        EXPECT_EQ(StartAndEndCom(), S_OK);
        EXPECT_EQ(simulation.GetTrace().Size(), 2U);
        if (i % 2 == 0) {
            simulation.Detach(GetModuleHandleA(nullptr));
            EXPECT_EQ(OpenUsersKey(), ERROR_SUCCESS) << "the real registry answers again";
            EXPECT_EQ(simulation.GetTrace().Size(), 2U);
        }
    }
}

// Threads of a runtime in the attached image: they start, wait and close with handles of their own,
// and end.
class Bystanders {
public:
    Bystanders() {
        for (std::thread& starter : starters_) {
            starter = std::thread([this] {
                while (!over_) {
                    std::thread(&Bystanders::Act, this).join();
                }
            });
        }
    }
    ~Bystanders() {
        over_ = true;
        for (std::thread& starter : starters_) {
            starter.join();
        }
    }

    // Whether they go on with their calls.
    bool Run() const {
        const int enough = calls_ + 20;
        for (int i = 0; i < 10'000 && calls_ < enough; ++i) {
            Sleep(1);
        }
        return calls_ >= enough;
    }

private:
    void Act() {
        const HANDLE event = CreateEventA(nullptr, TRUE, TRUE, nullptr);
        for (int i = 0; i < 10; ++i) {
            calls_ += WaitForSingleObject(event, INFINITE) == WAIT_OBJECT_0 ? 1 : 0;
        }
        calls_ += CloseHandle(event) != FALSE ? 1 : 0;
    }

    std::atomic<bool> over_ = false;
    std::atomic<int> calls_ = 0;
    std::array<std::thread, 2> starters_;
};

TEST(SimulationLifetime, ThreadsThatAreNoneOfItsBusinessRunOnWhileSimulationsComeAndGo) {
    const Bystanders bystanders;
    for (int i = 0; i < 200; ++i) {
        Simulation simulation(DefaultState());
        simulation.Attach(GetModuleHandleA(nullptr));
        EXPECT_EQ(StartAndEndCom(), S_OK);
        if (i % 10 == 0) {
            const Call call(*Core::Active(), "a call that takes its time");
            ASSERT_TRUE(bystanders.Run()) << "they wait for the call";
        }
        EXPECT_EQ(simulation.GetTrace().Size(), i % 10 == 0 ? 3U : 2U);
    }
}

}  // namespace
}  // namespace machine::test
