// The agent's cryptography library, the file functions and host names on the simulated machine.
#include <winsock2.h>

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

#include "common/ipc/IpAddress.h"
#include "common/sys/CryptoDll.h"
#include "common/util/FileUtils.h"
#include "machine/Cipher.h"
#include "tests/sys/simulated/Sweep.h"
#include "tests/sys/support/ScratchFolder.h"

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

TEST(FilesOnTheMachine, AnyFailingCallIsItsErrorAndComparingNeverThrows) {
    const ScratchFolder folder;
    const std::string file = folder.AddFile("file", "x");
    const std::string other = folder.AddFile("other", "x");
    const std::string moved = folder.Path("moved");
    SweepOptions options;
    options.afterEachRun = [&] {
        DeleteFileA(moved.c_str());
        folder.AddFile("file", "x");
    };
    Sweep([&](std::string&) { util::MoveFile(file, moved); },
          [](const FaultyRun& run) {
              // A destination whose attributes cannot be read counts as one that is not there.
              const bool atDestination =
                  run.fault.Is("GetFileAttributesA") && run.fault.ordinal == 1 && !run.fault.stays;
              EXPECT_EQ(run.outcome, atDestination ? Success()
                                     : run.fault.Is("MoveFileA")
                                         ? FileFailure("File Move Failed ", 104, 5)
                                         : FileFailure("Source file does not exist ", 100, 5));
          },
          options);
    Sweep([&](std::string&) { util::DeleteFile(file); },
          [](const FaultyRun& run) {
              EXPECT_EQ(run.outcome,
                        run.fault.Is("DeleteFileA")
                            ? FileFailure("Delete failed ", 139, 5)
                            : FileFailure("Delete failed - target does not exist", 136, 5));
          },
          options);
    Sweep(
        [&](std::string& outputs) {
            outputs = util::IsSameFile(file, other) ? "same" : "different";
            util::IsSameFile(file, folder.Path(".\\FILE"));
        },
        [](const FaultyRun& run) {
            EXPECT_EQ(run.outcome, Success());
            EXPECT_EQ(run.outputs, "different");
        });
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
