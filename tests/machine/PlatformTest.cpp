// The platform calls beside WMI, as a program makes them.
#include <windows.h>

#include <oaidl.h>

#include <iads.h>

#include <adshlp.h>
#include <gmock/gmock.h>
#include <lm.h>
#include <ntsecapi.h>
#include <winsock2.h>

#include <functional>

#define SECURITY_WIN32
#include <security.h>

#include "machine/Cipher.h"
#include "tests/machine/RawWmi.h"
#include "tests/machine/SimulatedTest.h"

namespace machine::test {
namespace {

class PlatformTest : public SimulatedTest {
protected:
    void BecomeMember() {
        Change([](State& state) {
            state.membership = Membership::OfDomain("CORP", "corp.example");
            state.domains[0].units[0].units[0].computers = {state.computerName};
        });
    }
};

std::wstring TextOf(const LSA_UNICODE_STRING& text) {
    return text.Buffer == nullptr ? L"" : std::wstring(text.Buffer, text.Length / sizeof(wchar_t));
}

struct Policy {
    std::wstring name;
    std::wstring dnsName;
    bool hasSid = false;
};

Policy ReadPolicy() {
    Policy policy;
    LSA_OBJECT_ATTRIBUTES attributes = {};
    LSA_HANDLE handle = nullptr;
    if (LsaOpenPolicy(nullptr, &attributes, POLICY_VIEW_LOCAL_INFORMATION, &handle) != 0) {
        return policy;
    }
    void* buffer = nullptr;
    if (LsaQueryInformationPolicy(handle, PolicyPrimaryDomainInformation, &buffer) == 0) {
        const auto* information = static_cast<POLICY_PRIMARY_DOMAIN_INFO*>(buffer);
        policy.name = TextOf(information->Name);
        policy.hasSid = information->Sid != nullptr && IsValidSid(information->Sid);
        LsaFreeMemory(buffer);
    }
    if (LsaQueryInformationPolicy(handle, PolicyDnsDomainInformation, &buffer) == 0) {
        policy.dnsName = TextOf(static_cast<POLICY_DNS_DOMAIN_INFO*>(buffer)->DnsDomainName);
        LsaFreeMemory(buffer);
    }
    LsaClose(handle);
    return policy;
}

TEST_F(PlatformTest, ThePolicyTellsTheMembership) {
    Policy policy = ReadPolicy();
    EXPECT_EQ(policy.name, L"WORKGROUP");
    EXPECT_EQ(policy.dnsName, L"");
    EXPECT_FALSE(policy.hasSid);
    BecomeMember();
    policy = ReadPolicy();
    EXPECT_EQ(policy.name, L"CORP");
    EXPECT_EQ(policy.dnsName, L"corp.example");
    EXPECT_TRUE(policy.hasSid);
}

TEST_F(PlatformTest, TheWorkstationNamesItsGroup) {
    WKSTA_INFO_100* information = nullptr;
    ASSERT_EQ(NetWkstaGetInfo(nullptr, 100, reinterpret_cast<LPBYTE*>(&information)), NERR_Success);
    EXPECT_STREQ(reinterpret_cast<wchar_t*>(information->wki100_langroup), L"WORKGROUP");
    EXPECT_STREQ(reinterpret_cast<wchar_t*>(information->wki100_computername), L"WORKSTATION1");
    EXPECT_EQ(NetApiBufferFree(information), NERR_Success);
}

TEST_F(PlatformTest, TheComputersObjectNameNeedsADomainAndRoom) {
    ULONG size = 0;
    EXPECT_FALSE(GetComputerObjectNameA(NameFullyQualifiedDN, nullptr, &size));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANT_ACCESS_DOMAIN_INFO));
    BecomeMember();
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

TEST_F(PlatformTest, TheDirectoryMovesTheComputer) {
    BecomeMember();
    ASSERT_EQ(CoInitialize(nullptr), S_OK);
    {
        Held<IADsContainer> container;
        const auto open = [&container](const wchar_t* password) {
            return ADsOpenObject(L"LDAP://OU=West,DC=corp,DC=example", L"corp.example\\joiner",
                                 password, ADS_SECURE_AUTHENTICATION, IID_IADsContainer,
                                 reinterpret_cast<void**>(container.Receive()));
        };
        EXPECT_EQ(open(L"wrong"), static_cast<HRESULT>(0x8007052E));
        EXPECT_EQ(container.Get(), nullptr);
        ASSERT_EQ(open(L"Join-Me-1"), S_OK);
        Held<IDispatch> moved;
        const Bstr source(L"LDAP://CN=WORKSTATION1,OU=Sales,OU=East,DC=corp,DC=example");
        EXPECT_EQ(container->MoveHere(source, nullptr, moved.Receive()), S_OK);
        EXPECT_NE(moved.Get(), nullptr);
        EXPECT_EQ(container->MoveHere(source, nullptr, moved.Receive()),
                  static_cast<HRESULT>(0x80072030));
        EXPECT_EQ(moved.Get(), nullptr);
    }
    CoUninitialize();
    EXPECT_EQ(simulation_.GetState().domains[0].units[1].computers, (TextList{"WORKSTATION1"}));
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
    using Decrypt = int (*)(const std::string&, std::string&);
    const HMODULE library = LoadLibraryA("libcrypto.dll");
    ASSERT_NE(library, nullptr);
    const auto address = GetProcAddress(library, "Decrypt");
    ASSERT_NE(address, nullptr);
    std::string plain;
    const auto decrypt = reinterpret_cast<Decrypt>(reinterpret_cast<void*>(address));
    EXPECT_EQ(decrypt(Encipher("a longer password, beyond any small buffer"), plain), 0);
    EXPECT_EQ(plain, "a longer password, beyond any small buffer");
    EXPECT_EQ(GetProcAddress(library, "Encrypt"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_TRUE(FreeLibrary(library));

    Change([](State& state) { state.system.libCrypto = CryptoLibrary::WithoutExport; });
    const HMODULE empty = LoadLibraryA("LibCrypto.dll");
    EXPECT_EQ(GetProcAddress(empty, "Decrypt"), nullptr);
    EXPECT_TRUE(FreeLibrary(empty));

    Change([](State& state) { state.system.libCrypto = CryptoLibrary::Absent; });
    EXPECT_EQ(LoadLibraryA("LibCrypto.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));

    const HMODULE real = LoadLibraryA("kernel32.dll");
    EXPECT_NE(GetProcAddress(real, "Sleep"), nullptr);
    FreeLibrary(real);
}

TEST_F(PlatformTest, NamesResolveFromTheModel) {
    WSADATA data;
    ASSERT_EQ(WSAStartup(0x0202, &data), 0);
    Change([](State& state) { state.hosts.push_back({"nowhere.example", {}}); });
    const hostent* entry = gethostbyname("GATEWAY.lab.example");
    ASSERT_NE(entry, nullptr);
    EXPECT_STREQ(inet_ntoa(*reinterpret_cast<in_addr*>(entry->h_addr_list[0])), "192.0.2.1");
    EXPECT_EQ(entry->h_addr_list[1], nullptr);
    entry = gethostbyname("nowhere.example");
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->h_addr_list[0], nullptr);
    EXPECT_EQ(gethostbyname("unknown.example"), nullptr);
    EXPECT_EQ(WSAGetLastError(), WSAHOST_NOT_FOUND);
    Fail("gethostbyname=11003");
    EXPECT_EQ(gethostbyname("gateway.lab.example"), nullptr);
    EXPECT_EQ(WSAGetLastError(), 11003);
    WSACleanup();
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

TEST_F(PlatformTest, AFailingCallHandsNothingOutAndLeavesItsCode) {
    struct Case {
        const char* plan;
        std::function<std::uint32_t()> call;  // gives the code seen
    };
    const auto lastError = [](bool failed) { return failed ? GetLastError() : 0; };
    const Case cases[] = {
        {"RegOpenKeyExA=2",
         [] {
             HKEY key = nullptr;
             const auto code = RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SYSTEM", 0, KEY_READ, &key);
             EXPECT_EQ(key, nullptr);
             return static_cast<std::uint32_t>(code);
         }},
        {"LsaOpenPolicy=0xC0000017",
         [] {
             LSA_OBJECT_ATTRIBUTES attributes = {};
             LSA_HANDLE handle = nullptr;
             const auto code = LsaOpenPolicy(nullptr, &attributes, 1, &handle);
             EXPECT_EQ(handle, nullptr);
             return static_cast<std::uint32_t>(code);
         }},
        {"NetWkstaGetInfo=5",
         [] {
             LPBYTE buffer = nullptr;
             const auto code = NetWkstaGetInfo(nullptr, 100, &buffer);
             EXPECT_EQ(buffer, nullptr);
             return static_cast<std::uint32_t>(code);
         }},
        {"CoInitializeEx=14",
         [] { return static_cast<std::uint32_t>(CoInitializeEx(nullptr, 0)); }},
        {"LoadLibraryA=5", [&] { return lastError(LoadLibraryA("LibCrypto.dll") == nullptr); }},
        {"GetFileAttributesA=32",
         [&] { return lastError(GetFileAttributesA(".") == INVALID_FILE_ATTRIBUTES); }},
        {"DeleteFileA=32", [&] { return lastError(!DeleteFileA("no-such-file")); }},
        {"CreatePipe=14",
         [&] {
             HANDLE readEnd = nullptr;
             HANDLE writeEnd = nullptr;
             const bool failed = !CreatePipe(&readEnd, &writeEnd, nullptr, 0);
             const auto code = lastError(failed);
             EXPECT_EQ(readEnd, nullptr);
             return code;
         }},
        {"WSAStartup=10093",
         [] {
             WSADATA data;
             return static_cast<std::uint32_t>(WSAStartup(0x0202, &data));
         }},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.plan);
        Fail(one.plan);
        const auto code = *simulation_.GetFaultPlan().Rules()[0].code;
        const std::uint32_t seen = one.call();
        EXPECT_TRUE(seen == code || seen == (0x80070000U | code)) << seen;
        EXPECT_EQ(simulation_.GetFaultPlan().Fired(), 1U);
    }
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
    // This program asks whether a SID is valid and cleans Winsock up; both touch no machine state.
    for (const std::string& import : simulation.UnservedImports()) {
        EXPECT_TRUE(import.ends_with("!IsValidSid") || import.ends_with("!WSACleanup") ||
                    import.ends_with("!gethostname") || import.find("ole32.dll!") == 0)
            << import;
    }
    EXPECT_FALSE(simulation.UnservedImports().empty());
}

}  // namespace
}  // namespace machine::test
