// Libraries of the system itself, and ones that are not there.
#include "common/sys/DllProxy.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/sys/CryptoDll.h"
#include "tests/sys/support/Outcome.h"

namespace {

using sys_tests::DllFailure;
using sys_tests::OutcomeOf;
using sys_tests::Success;

TEST(DllProxy, LoadsOnFirstUseAndUnloadsAtTheEnd) {
    constexpr const char* kLibrary = "cabinet.dll";  // nothing here imports it
    ASSERT_EQ(GetModuleHandleA(kLibrary), nullptr);
    {
        sys::DllProxy proxy(kLibrary);
        EXPECT_EQ(GetModuleHandleA(kLibrary), nullptr);
        void* slot = nullptr;
        proxy.GetProcAddress(slot, "FDICreate");
        HMODULE const module = GetModuleHandleA(kLibrary);
        EXPECT_EQ(slot, reinterpret_cast<void*>(GetProcAddress(module, "FDICreate")));

        EXPECT_EQ(OutcomeOf([&] { proxy.GetProcAddress(slot, "NoSuchFunction"); }),
                  DllFailure("DllProxy::GetProcAddress - GetProcAddress Failed", 83, 1,
                             ERROR_PROC_NOT_FOUND));
        EXPECT_EQ(slot, nullptr);
        EXPECT_EQ(GetModuleHandleA(kLibrary), module) << "a failed look-up unloads nothing";
        proxy.Load();
    }
    EXPECT_EQ(GetModuleHandleA(kLibrary), nullptr);
}

TEST(DllProxy, ALibraryThatIsNotThereFailsWhenItIsNeeded) {
    void* slot = &slot;
    sys::DllProxy nameless("");
    SetLastError(4711);
    EXPECT_EQ(OutcomeOf([&] { nameless.GetProcAddress(slot, "Decrypt"); }),
              DllFailure("DllProxy::Load - No Filename", 64, 0, 4711));
    sys::DllProxy missing("no-such-library.dll");
    const auto notFound =
        DllFailure("DllProxy::Load - Load Library Failed", 70, 0, ERROR_MOD_NOT_FOUND);
    EXPECT_EQ(OutcomeOf([&] { missing.Load(); }), notFound);
    EXPECT_EQ(OutcomeOf([&] { missing.GetProcAddress(slot, "Decrypt"); }), notFound);

    sys::CryptoDll crypto;
    std::string plain = "kept";
    EXPECT_EQ(OutcomeOf([&] { crypto.Decrypt("enciphered", plain); }), notFound);
    EXPECT_EQ(plain, "kept");
}

}  // namespace
