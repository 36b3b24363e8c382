// The platform calls beside WMI, as a program makes them.
#include <windows.h>

#include <gtest/gtest.h>
#include <lm.h>
#include <objbase.h>

#include "machine/Cipher.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class PlatformTest : public SimulatedTest {};

TEST_F(PlatformTest, TheRegistryAnswersFromTheModel) {
    const std::string path =
        R"(SYSTEM\CurrentControlSet\Enum\)" + *simulation_.GetState().adapters[0].pnpDeviceId;
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM\\Nothing", 0, GENERIC_READ, &key),
              ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, GENERIC_READ, &key),
              ERROR_SUCCESS);
    BYTE text[32] = {};
    DWORD type = 0;
    DWORD size = 31;
    const auto read = [&](const char* name) {
        return RegQueryValueExA(key, name, nullptr, &type, text, &size);
    };
    EXPECT_EQ(read("Nothing"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(read("locationinformation"), ERROR_MORE_DATA);
    EXPECT_EQ(size, 32U);
    EXPECT_EQ(read("LocationInformation"), ERROR_SUCCESS);
    EXPECT_STREQ(reinterpret_cast<char*>(text), "PCI bus 2, device 1, function 0");
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));

    HKEY created = nullptr;
    DWORD disposition = 0;
    EXPECT_EQ(
        RegCreateKeyExA(key, "New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &created, &disposition),
        ERROR_SUCCESS);
    EXPECT_EQ(disposition, static_cast<DWORD>(REG_CREATED_NEW_KEY));
    EXPECT_EQ(RegCloseKey(created), ERROR_SUCCESS);
    EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
    EXPECT_EQ(simulation_.GetState().registry.back().path, path + "\\New");
}

TEST_F(PlatformTest, TheCryptoLibraryHasOneExportAndOthersAreReal) {
    const HMODULE library = LoadLibraryA("libcrypto.dll");
    EXPECT_NE(GetProcAddress(library, "Decrypt"), nullptr);
    EXPECT_EQ(GetProcAddress(library, "Encrypt"), nullptr);
    EXPECT_TRUE(FreeLibrary(library));
    const HMODULE real = LoadLibraryA("kernel32.dll");
    EXPECT_NE(GetProcAddress(real, "Sleep"), nullptr);
    FreeLibrary(real);
    for (const char* plain : {"", "Passw0rd!", "corp\\admin 1, 2; 3=\"x\""}) {
        EXPECT_EQ(Decipher(Encipher(plain)), plain);
    }
    // The transformation that example files are written with.
    EXPECT_EQ(Encipher("Secret-19"), "46-greprF");
}

TEST_F(PlatformTest, TheProgramsFileIsTheOneThatTheHostChose) {
    char real[MAX_PATH] = {};
    EXPECT_NE(GetModuleFileNameA(nullptr, real, sizeof(real)), 0U);
    EXPECT_NE(std::string(real).find("machine_tests"), std::string::npos);
    simulation_.SetProgramFile("C:\\agent\\agent.exe");
    char file[19] = {};
    EXPECT_EQ(GetModuleFileNameA(nullptr, file, sizeof(file)), 18U);
    EXPECT_STREQ(file, "C:\\agent\\agent.exe");
    EXPECT_EQ(GetModuleFileNameA(nullptr, file, 6), 6U);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_STREQ(file, "C:\\ag");
}

TEST_F(PlatformTest, SleepTakesNoRealTime) {
    const ULONGLONG before = GetTickCount64();
    Sleep(3'600'000);
    EXPECT_LT(GetTickCount64() - before, 60'000U);
    EXPECT_EQ(simulation_.VirtualTime(), 3'600'000U);
}

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
    for (int i = 0; i < 50; ++i) {
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

TEST(SimulationLifetime, ImportsThatNobodyServesAreListed) {
    Simulation simulation(DefaultState());
    simulation.Attach(GetModuleHandleA(nullptr));
    for (const std::string& import : simulation.UnservedImports()) {
        EXPECT_EQ(import.find("ole32.dll!"), 0U) << import;
    }
    EXPECT_FALSE(simulation.UnservedImports().empty());
}

}  // namespace
}  // namespace machine::test
