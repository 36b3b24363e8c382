// The registry wrapper against a key of the system's own registry.
#include "common/sys/Registry.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "tests/sys/support/Outcome.h"

namespace {

using namespace std::string_view_literals;
using namespace sys_tests;

constexpr DWORD kForeignError = 4711;
constexpr const char* kRoot = "Software\\toolbox-registry-test";

class RegistryTest : public testing::Test {
protected:
    RegistryTest() {
        RegDeleteTreeA(HKEY_CURRENT_USER, kRoot);
        RegCreateKeyExA(HKEY_CURRENT_USER, kRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &scratch_,
                        nullptr);
        key_.SetKey(HKEY_CURRENT_USER, kRoot);
        key_.OpenForReading(0);
    }
    ~RegistryTest() override {
        owner_.reset();
        RegCloseKey(scratch_);
        RegDeleteTreeA(HKEY_CURRENT_USER, kRoot);
    }

    void SetValue(const char* name, DWORD type, std::string_view data) {
        ASSERT_EQ(
            RegSetValueExA(scratch_, name, 0, type, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size())),
            ERROR_SUCCESS);
    }

    HKEY scratch_ = nullptr;
    std::unique_ptr<sys::Registry> owner_ = std::make_unique<sys::Registry>();
    sys::Registry& key_ = *owner_;  // open
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
        {"Nothing", REG_SZ, ""sv, ""},
        {"Cut", REG_SZ, "before\0after\0"sv, "before"},
        {"NoTerminator", REG_SZ, "abcdefg"sv, "abcdefg"},
        {"Long", REG_SZ, longText, longText},
        {"xy", REG_SZ, "named xy", "named xy"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        SetValue(c.name, c.type, c.stored);
        std::string text = "before";
        EXPECT_EQ(OutcomeOf([&] { key_.ReadString(c.name, text); }), Success());
        EXPECT_EQ(text, c.read);
    }
    SetValue(nullptr, REG_SZ, "default");
    SetValue("x", REG_SZ, "named x");
    for (const char* const name : {"", "x"}) {
        std::string text;
        key_.ReadString(name, text);
        EXPECT_EQ(text, "default") << "a short name reads the default value";
    }
}

TEST_F(RegistryTest, ValuesThatAreNoTextsAreRefused) {
    SetValue("Number", REG_DWORD, "\1\0\0\0"sv);
    SetValue("List", REG_MULTI_SZ, "a\0b\0\0"sv);
    const Outcome wrongType =
        RegistryFailure("ReadString() - Incorrect data type.", 256, 9, kForeignError);
    const std::pair<const char*, Outcome> cases[] = {
        {"Number", wrongType},
        {"List", wrongType},
        {"Missing", RegistryFailure("ReadString() - Read failed.", 268, 6, kForeignError)}};
    for (const auto& [name, expected] : cases) {
        std::string text = "kept";
        SetLastError(kForeignError);
        EXPECT_EQ(OutcomeOf([&, key = name] { key_.ReadString(key, text); }), expected);
        EXPECT_EQ(text, "kept");
    }
}

TEST_F(RegistryTest, MisuseIsAnErrorThatTheOpenKeySurvives) {
    sys::Registry closed;
    std::string text = "kept";
    struct Case {
        std::function<void()> call;
        const char* message;
        int line;
        int category;
    };
    const Case cases[] = {
        {[&] { key_.SetKey(HKEY_LOCAL_MACHINE); },
         "SetKey( HKEY hKey ) - Registry key already open, cannot set key.", 91, 1},
        {[&] { key_.SetKey(HKEY_LOCAL_MACHINE, "Software"); },
         "SetKey( HKEY hKey, const std::string& subkey ) - Registry key already open, cannot set "
         "key.",
         99, 1},
        {[&] { key_.SetSubkey("Software"); },
         "SetSubkey() - Registry key already open, cannot set subkey.", 113, 1},
        {[&] { key_.Open(true, false, 0); },
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
    SetValue("Text", REG_SZ, "still here");
    key_.ReadString("Text", text);
    EXPECT_EQ(text, "still here");
}

TEST_F(RegistryTest, AKeyThatCannotBeOpenedCarriesTheSystemsCode) {
    sys::Registry key;
    key.SetKey(HKEY_CURRENT_USER, std::string(kRoot) + "\\Missing");
    const Outcome notFound =
        RegistryFailure("OpenIntern() - Cannot open key.", 813, 3, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(OutcomeOf([&] { key.OpenForReading(1); }), notFound);
    EXPECT_EQ(OutcomeOf([&] { key.Open(false, false, 0); }), notFound);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    key.SetKey(HKEY_LOCAL_MACHINE, kRoot);
    EXPECT_EQ(OutcomeOf([&] { key.OpenForReading(0); }), notFound) << "the root was not replaced";
}

}  // namespace
