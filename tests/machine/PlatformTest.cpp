// The platform calls beside WMI, as a program makes them.
#include <windows.h>

#include <gtest/gtest.h>
#include <lm.h>
#include <objbase.h>

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

}  // namespace
}  // namespace machine::test
