// The registry wrapper against a key of the system's own registry, and on the simulated machine.
#include "common/sys/Registry.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/err/GeneralError.h"
#include "tests/common/sys/Machine.h"
#include "tests/common/sys/Outcome.h"

namespace {

using namespace std::string_view_literals;
using namespace sys_tests;
using testing::ElementsAre;

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

constexpr const char* kKey = "SOFTWARE\\Test";

machine::State WithKey() {
    machine::State state = machine::DefaultState();
    state.registry = {{kKey, {machine::RegistryValue::Text("Value", "content")}}};
    return state;
}

TEST(SimulatedRegistry, AccessFollowsCreateReadOnlyAndView) {
    struct Case {
        bool create;
        bool readOnly;
        int view;
        const char* access;
    };
    const Case cases[] = {
        {false, true, 0, "0x80000000"},  {false, true, 1, "0x80000200"},
        {false, true, -1, "0x80000000"}, {false, false, 0, "0xF003F"},
        {true, true, 1, "0xF023F"},
    };
    for (const Case& c : cases) {
        Machine machine(WithKey());
        sys::Registry key;
        key.SetSubkey(kKey);
        EXPECT_EQ(machine.Run([&] {
            if (c.view == 1 && c.readOnly && !c.create) {
                key.OpenForReading(c.view);
            } else {
                key.Open(c.create, c.readOnly, c.view);
            }
            key.Close();
        }),
                  Success());
        const std::string open = c.create
                                     ? "RegCreateKeyExA subkey=SOFTWARE\\Test options=0x0 access="
                                     : "RegOpenKeyExA subkey=SOFTWARE\\Test access=";
        EXPECT_THAT(machine.Texts(), ElementsAre(open + c.access, "RegCloseKey"));
    }
}

TEST(SimulatedRegistry, AFailedCloseLeavesTheKeyOpen) {
    Machine machine(WithKey());
    machine.Fail("RegCloseKey#1");
    sys::Registry key;
    key.SetSubkey(kKey);
    key.OpenForReading(0);
    EXPECT_THROW(key.Close(), err::CGeneralError);
    EXPECT_THROW(key.SetSubkey("x"), err::CGeneralError);
    EXPECT_EQ(machine.Run([&] { key.Close(); }), Success());
}

TEST(SimulatedRegistry, ADestructorDuringUnwindingKeepsItsOwnErrorToItself) {
    Machine machine(WithKey());
    machine.Fail("RegCloseKey");
    // An object that lives wholly inside the unwinding still reports its own.
    struct DuringUnwinding {
        Outcome* outcome;
        ~DuringUnwinding() {
            *outcome = OutcomeOf([] {
                sys::Registry key;
                key.SetSubkey(kKey);
                key.OpenForReading(0);
                SetLastError(kForeignError);
            });
        }
    };
    Outcome inner;
    EXPECT_EQ(machine.Run([&inner] {
        const DuringUnwinding scope{&inner};
        sys::Registry key;
        key.SetSubkey(kKey);
        key.OpenForReading(0);
        std::string value;
        SetLastError(kForeignError);
        key.ReadString("Missing", value);
    }),
              RegistryFailure("ReadString() - Read failed.", 268, 6, kForeignError));
    EXPECT_EQ(machine.Texts("RegCloseKey").size(), 2U);
    EXPECT_EQ(inner, RegistryFailure("Close() - RegCloseKey failed", 184, 2, kForeignError));
}

}  // namespace
