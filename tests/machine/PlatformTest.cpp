// The platform calls beside WMI, as a program makes them.
#include <windows.h>

#include <gtest/gtest.h>
#include <lm.h>
#include <objbase.h>

#define SECURITY_WIN32
#include <security.h>

#include "machine/Cipher.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class PlatformTest : public SimulatedTest {};

TEST_F(PlatformTest, TheComputersObjectNameNeedsADomainAndRoom) {
    ULONG size = 0;
    EXPECT_FALSE(GetComputerObjectNameA(NameFullyQualifiedDN, nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANT_ACCESS_DOMAIN_INFO));
    Change([](State& state) {
        state.membership = Membership::OfDomain("CORP", "corp.example");
        state.domains[0].units[0].units[0].computers = {state.computerName};
    });
    const std::string expected = "CN=WORKSTATION1,OU=Sales,OU=East,DC=corp,DC=example";
    EXPECT_TRUE(GetComputerObjectNameA(NameFullyQualifiedDN, nullptr, &size));
    EXPECT_EQ(size, expected.size() + 1);
    std::string name(size, '?');
    ULONG tooSmall = size - 1;
    EXPECT_FALSE(GetComputerObjectNameA(NameFullyQualifiedDN, name.data(), &tooSmall));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(tooSmall, size);
    EXPECT_TRUE(GetComputerObjectNameA(NameFullyQualifiedDN, name.data(), &size));
    EXPECT_STREQ(name.c_str(), expected.c_str());
}

TEST_F(PlatformTest, TheRegistryAnswersFromTheModel) {
    const std::string path =
        R"(SYSTEM\CurrentControlSet\Enum\)" + *simulation_.GetState().adapters[0].pnpDeviceId;
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM\\Nothing", 0, GENERIC_READ, &key),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(key, nullptr);
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, GENERIC_READ, &key),
              ERROR_SUCCESS);
    DWORD type = 0;
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(key, "Nothing", nullptr, &type, nullptr, &size),
              ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(RegQueryValueExA(key, "locationinformation", nullptr, &type, nullptr, &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));
    std::string text(size, '?');
    DWORD tooSmall = size - 1;
    EXPECT_EQ(RegQueryValueExA(key, "LocationInformation", nullptr, nullptr,
                               reinterpret_cast<BYTE*>(text.data()), &tooSmall),
              ERROR_MORE_DATA);
    EXPECT_EQ(tooSmall, size);
    ASSERT_EQ(RegQueryValueExA(key, "LocationInformation", nullptr, nullptr,
                               reinterpret_cast<BYTE*>(text.data()), &size),
              ERROR_SUCCESS);
    EXPECT_STREQ(text.c_str(), "PCI bus 2, device 1, function 0");

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

TEST_F(PlatformTest, TheCryptoLibraryIsThereAbsentOrEmpty) {
    const HMODULE library = LoadLibraryA("libcrypto.dll");
    EXPECT_NE(GetProcAddress(library, "Decrypt"), nullptr);
    EXPECT_EQ(GetProcAddress(library, "Encrypt"), nullptr);
    EXPECT_TRUE(FreeLibrary(library));
    Change([](State& state) { state.system.libCrypto = CryptoLibrary::WithoutExport; });
    const HMODULE empty = LoadLibraryA("LibCrypto.dll");
    EXPECT_EQ(GetProcAddress(empty, "Decrypt"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_TRUE(FreeLibrary(empty));
    Change([](State& state) { state.system.libCrypto = CryptoLibrary::Absent; });
    EXPECT_EQ(LoadLibraryA("LibCrypto.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));

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
