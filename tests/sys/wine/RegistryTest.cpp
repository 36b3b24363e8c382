// The registry wrapper against a key of the system's own registry.
#include "common/sys/Registry.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/sys/support/Outcome.h"

namespace {

using namespace std::string_view_literals;
using sys_tests::Outcome;
using sys_tests::OutcomeOf;
using sys_tests::RegistryFailure;
using sys_tests::Success;

constexpr DWORD kForeignError = 4711;

class RegistryTest : public testing::Test {
protected:
    RegistryTest() {
        RegDeleteTreeA(HKEY_CURRENT_USER, kRoot);
        RegCreateKeyExA(HKEY_CURRENT_USER, kRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &scratch_,
                        nullptr);
    }
    ~RegistryTest() override {
        RegCloseKey(scratch_);
        RegDeleteTreeA(HKEY_CURRENT_USER, kRoot);
    }

    void SetValue(const char* name, DWORD type, std::string_view data) {
        ASSERT_EQ(
            RegSetValueExA(scratch_, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size())),
            ERROR_SUCCESS);
    }

    /// Opens `key`, whose handle is then closed behind its back. The system gives the lowest handle
    /// that is free, so the one that `key` gets is known beforehand.
    static void OpenWithDeadHandle(sys::Registry& key) {
        HKEY probe = nullptr;
        ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRoot, 0, KEY_READ, &probe), ERROR_SUCCESS);
        ASSERT_EQ(RegCloseKey(probe), ERROR_SUCCESS);
        key.SetKey(HKEY_CURRENT_USER, kRoot);
        key.OpenForReading(0);
        ASSERT_EQ(RegCloseKey(probe), ERROR_SUCCESS);
    }

    static constexpr const char* kRoot = "Software\\toolbox-registry-test";
    HKEY scratch_ = nullptr;
};

TEST_F(RegistryTest, TextValuesAreReadAsStored) {
    const std::string longText(70000, 'x');
    struct Case {
        const char* name;
        DWORD type;
        std::string_view stored;
        std::string_view read;
    };
    const Case cases[] = {
        {"Text", REG_SZ, "plain\0"sv, "plain"},
        {"Expandable", REG_EXPAND_SZ, "%TEMP%\\x\0"sv, "%TEMP%\\x"},
        {"Empty", REG_SZ, "\0"sv, ""},
        {"Nothing", REG_SZ, ""sv, ""},
        {"Cut", REG_SZ, "before\0after\0"sv, "before"},
        {"NoTerminator", REG_SZ, "abcdefg"sv, "abcdefg"},
        {"Long", REG_SZ, longText, longText},
        {"Accents", REG_SZ, "\xE4\xF6\xFC\0"sv, "\xE4\xF6\xFC"},
    };
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER, kRoot);
    key.OpenForReading(0);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetValue(c.name, c.type, c.stored);
        std::string text = "before";
        EXPECT_EQ(OutcomeOf([&] { key.ReadString(c.name, text); }), Success());
        EXPECT_EQ(text, c.read);
    }
}

TEST_F(RegistryTest, AShortNameReadsTheDefaultValue) {
    SetValue(nullptr, REG_SZ, "default");
    SetValue("x", REG_SZ, "named x");
    SetValue("xy", REG_SZ, "named xy");
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER, kRoot);
    key.OpenForReading(0);
    const std::pair<const char*, const char*> cases[] = {
        {"", "default"}, {"x", "default"}, {"xy", "named xy"}};
    for (const auto& [name, expected] : cases) {
        std::string text;
        key.ReadString(name, text);
        EXPECT_EQ(text, expected) << "name '" << name << "'";
    }
}

TEST_F(RegistryTest, ValuesThatAreNoTextsAreRefused) {
    SetValue("Number", REG_DWORD, "\1\0\0\0"sv);
    SetValue("List", REG_MULTI_SZ, "a\0b\0\0"sv);
    SetValue("Bytes", REG_BINARY, "abc"sv);
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER, kRoot);
    key.OpenForReading(0);
    for (const char* const name : {"Number", "List", "Bytes"}) {
        std::string text = "kept";
        SetLastError(kForeignError);
        EXPECT_EQ(OutcomeOf([&] { key.ReadString(name, text); }),
                  RegistryFailure("ReadString() - Incorrect data type.", 256, 9, kForeignError));
        EXPECT_EQ(text, "kept");
    }
    std::string text = "kept";
    SetLastError(kForeignError);
    EXPECT_EQ(OutcomeOf([&] { key.ReadString("Missing", text); }),
              RegistryFailure("ReadString() - Read failed.", 268, 6, kForeignError));
    EXPECT_EQ(text, "kept");
}

TEST_F(RegistryTest, MisuseIsAnError) {
    sys::Registry open;
    open.SetKey(HKEY_CURRENT_USER, kRoot);
    open.Open(false, true, 0);
    sys::Registry closed;
    std::string text = "kept";
    struct Case {
        std::function<void()> call;
        const char* message;
        int line;
        int category;
    };
    const Case cases[] = {
        {[&] { open.SetKey(HKEY_LOCAL_MACHINE); },
         "SetKey( HKEY hKey ) - Registry key already open, cannot set key.", 91, 1},
        {[&] { open.SetKey(HKEY_LOCAL_MACHINE, "Software"); },
         "SetKey( HKEY hKey, const std::string& subkey ) - Registry key already open, cannot set "
         "key.",
         99, 1},
        {[&] { open.SetSubkey("Software"); },
         "SetSubkey() - Registry key already open, cannot set subkey.", 113, 1},
        {[&] { open.Open(true, false, 0); },
         "OpenIntern() - Registry key already open, cannot set subkey.", 760, 1},
        {[&] { open.OpenForReading(1); },
         "OpenIntern() - Registry key already open, cannot set subkey.", 760, 1},
        {[&] { closed.ReadString("Text", text); }, "ReadString() - Key not open, cannot read.", 247,
         8},
        {[&] { closed.Close(); }, "Close() - Registry key not open, cannot close", 187, 8},
    };
    for (const Case& c : cases) {
        SetLastError(kForeignError);
        EXPECT_EQ(OutcomeOf(c.call), RegistryFailure(c.message, c.line, c.category, kForeignError));
    }
    EXPECT_EQ(text, "kept");
    // The open key has survived all of it, root and subkey included.
    SetValue("Text", REG_SZ, "still here");
    open.ReadString("Text", text);
    EXPECT_EQ(text, "still here");
    open.Close();
    EXPECT_EQ(OutcomeOf([&] { open.OpenForReading(0); }), Success());
}

TEST_F(RegistryTest, AKeyThatCannotBeOpenedCarriesTheSystemsCode) {
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER, std::string(kRoot) + "\\Missing");
    const Outcome notFound =
        RegistryFailure("OpenIntern() - Cannot open key.", 813, 3, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OutcomeOf([&] { key.OpenForReading(1); }), notFound);
    EXPECT_EQ(OutcomeOf([&] { key.Open(false, false, 0); }), notFound);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    key.SetKey(HKEY_LOCAL_MACHINE);
    EXPECT_EQ(OutcomeOf([&] { key.OpenForReading(0); }), notFound) << "the root was not replaced";
}

TEST_F(RegistryTest, CreatingMakesTheKeyAndAllowsWriting) {
    // Reading only is possible for a key that exists: what is created is opened for everything.
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER);
    key.SetSubkey(std::string(kRoot) + "\\Made\\Deep");
    key.Open(true, true, 0);
    key.Close();
    HKEY made = nullptr;
    EXPECT_EQ(RegOpenKeyExA(scratch_, "Made\\Deep", 0, KEY_ALL_ACCESS, &made), ERROR_SUCCESS);
    RegCloseKey(made);
}

TEST_F(RegistryTest, AFailedCloseLeavesTheKeyOpen) {
    sys::Registry key;
    OpenWithDeadHandle(key);
    SetLastError(kForeignError);
    EXPECT_EQ(OutcomeOf([&] { key.Close(); }),
              RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError));
    EXPECT_EQ(OutcomeOf([&] { key.SetSubkey("x"); }).line, 113)
        << "the key no longer counts as open";
    // Lets the destructor end in peace.
    HKEY again = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRoot, 0, KEY_READ, &again), ERROR_SUCCESS);
}

TEST_F(RegistryTest, TheDestructorReportsAFailedCloseOnlyWhenNothingElseIsWrong) {
    EXPECT_EQ(OutcomeOf([] {
                  sys::Registry key;
                  OpenWithDeadHandle(key);
                  SetLastError(kForeignError);
              }),
              RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError));

    EXPECT_THROW(
        {
            sys::Registry key;
            OpenWithDeadHandle(key);
            throw std::runtime_error("the first error");
        },
        std::runtime_error);

    // An object that lives wholly inside the handling of another error still reports its own.
    struct DuringUnwinding {
        Outcome* outcome;
        ~DuringUnwinding() {
            *outcome = OutcomeOf([] {
                sys::Registry key;
                OpenWithDeadHandle(key);
            });
        }
    };
    Outcome inner;
    try {
        const DuringUnwinding scope{&inner};
        throw std::runtime_error("the outer error");
    } catch (const std::runtime_error&) {
        EXPECT_EQ(inner.line, 184);
    }
}

TEST_F(RegistryTest, TheDestructorClosesAnOpenKey) {
    HKEY probe = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRoot, 0, KEY_READ, &probe), ERROR_SUCCESS);
    RegCloseKey(probe);
    {
        sys::Registry key;
        key.SetKey(HKEY_CURRENT_USER, kRoot);
        key.OpenForReading(0);
    }
    EXPECT_EQ(RegCloseKey(probe), ERROR_INVALID_HANDLE);
}

}  // namespace
