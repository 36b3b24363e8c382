// The agent's cryptography library and host names on the simulated machine.
#include <winsock2.h>

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

#include "common/ipc/IpAddress.h"
#include "common/sys/CryptoDll.h"
#include "machine/Cipher.h"
#include "tests/sys/simulated/Sweep.h"

namespace {

using namespace sys_tests;
using ipc::IPv4Address;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(CryptoLibrary, DecipheringLooksTheExportUpOnce) {
    Machine machine;
    const std::string enciphered = machine::Encipher("Join-Me-1");
    EXPECT_EQ(machine.Run([&] {
        sys::CryptoDll crypto;
        for (int again = 0; again < 2; ++again) {
            std::string plain;
            EXPECT_EQ(crypto.Decrypt(enciphered, plain), 0);
            EXPECT_EQ(plain, "Join-Me-1");
        }
    }),
              Success());
    EXPECT_THAT(machine.Texts(),
                ElementsAre("LoadLibraryA name=LibCrypto.dll", "GetProcAddress name=Decrypt",
                            "Decrypt enciphered=***", "Decrypt enciphered=***", "FreeLibrary"));
    EXPECT_EQ(machine.Run([] { const sys::CryptoDll unused; }), Success());
    EXPECT_THAT(machine.Texts(), IsEmpty());
}

TEST(CryptoLibrary, AnyFailingCallIsItsError) {
    const Operation operation = [](std::string& outputs) {
        std::string plain = "kept";
        int result = -1;
        const Show show(outputs, [&] { return plain + " " + std::to_string(result); });
        sys::CryptoDll crypto;
        result = crypto.Decrypt(machine::Encipher("secret"), plain);
    };
    const auto check = [](const FaultyRun& run) {
        if (run.fault.Is("Decrypt")) {
            EXPECT_EQ(run.outcome, Success());
            EXPECT_EQ(run.outputs, "kept 1") << "the library's result is handed back";
            return;
        }
        EXPECT_EQ(run.outcome, run.fault.Is("LoadLibraryA")
                                   ? DllFailure("DllProxy::Load - Load Library Failed", 70, 0,
                                                ERROR_MOD_NOT_FOUND)
                                   : DllFailure("DllProxy::GetProcAddress - GetProcAddress Failed",
                                                83, 1, ERROR_PROC_NOT_FOUND));
        EXPECT_EQ(run.outputs, "kept -1");
    };
    Sweep(operation, check);
}

machine::State WithHosts() {
    machine::State state = machine::DefaultState();
    state.hosts = {{"two.example", {"192.0.2.1", "192.0.2.2"}}, {"none.example", {}}};
    return state;
}

TEST(HostNames, FirstAddressCountsAndNoneLeavesWhatWasThere) {
    Machine machine(WithHosts());
    EXPECT_EQ(IPv4Address(std::string("two.example")).ToString(), "192.0.2.1");
    EXPECT_EQ(IPv4Address(std::string("none.example")).ToString(), "0.0.0.0");
    IPv4Address address(std::string("10.0.0.1"));
    address.Resolve("none.example");
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    EXPECT_EQ(machine.Run([&] { address.Resolve("missing.example"); }),
              AddressFailure(WSAHOST_NOT_FOUND));
    EXPECT_THAT(machine.Texts(), ElementsAre("gethostbyname name=missing.example"));
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    machine.Fail("gethostbyname");
    EXPECT_EQ(machine.Run([&] { address.Resolve("two.example"); }), AddressFailure(WSATRY_AGAIN));
    EXPECT_EQ(address.ToString(), "10.0.0.1");
    EXPECT_EQ(machine.Run([&] { address.Resolve("1.2.3.4"); }), Success());
    EXPECT_THAT(machine.Texts(), IsEmpty()) << "a quad needs no look-up";
}

}  // namespace
