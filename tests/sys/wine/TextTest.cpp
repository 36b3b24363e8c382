// Text at the boundaries that speak wide characters.
#include "common/util/WideText.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "common/sys/ComPointers.h"
#include "common/sys/WmiValues.h"

namespace {

using namespace std::string_literals;

TEST(WideText, EveryByteOfTheCodePageSurvivesTheWayThereAndBack) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string narrow(1, static_cast<char>(byte));
        // The few bytes that the code page does not define have no way back.
        if (BOOL replaced = FALSE; [&] {
                const std::wstring wide = util::Widen(narrow);
                WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), 1, nullptr, 0,
                                    nullptr, &replaced);
                return replaced == FALSE;
            }()) {
            EXPECT_EQ(util::Narrow(util::Widen(narrow)), narrow) << byte;
        }
    }
    EXPECT_EQ(util::Narrow(L""), "");
    EXPECT_EQ(util::Widen(""), L"");
    EXPECT_EQ(util::Widen("a\0b"s), L"a\0b"s);
    EXPECT_EQ(util::Narrow(L"a\0b"s), "a\0b"s);
    EXPECT_EQ(util::Narrow(L"\x4E2D"), "?") << "not in the code page";
    const std::wstring longText(100000, L'x');
    EXPECT_EQ(util::Narrow(longText), std::string(longText.size(), 'x'));
    const util::WideToMBCSString owned(L"owned");
    EXPECT_STREQ(owned.Get(), "owned");
}

TEST(WideText, ErasingOverwritesEverythingThatTheTextOwns) {
    std::wstring secret = L"a secret that is too long to be kept inside the object";
    const wchar_t* const memory = secret.data();
    const std::size_t length = secret.size();
    util::SecureErase(secret);
    EXPECT_TRUE(secret.empty());
    EXPECT_EQ(secret.data(), memory) << "the memory was given back before it was overwritten";
    EXPECT_EQ(std::wstring(memory, length), std::wstring(length, L'\0'));
}

TEST(WmiValues, TextsBecomeBstrsOfTheSystem) {
    const sys::Bstr narrow(std::string_view("sch\xF6n"));
    EXPECT_EQ(std::wstring(narrow.Get(), SysStringLen(narrow.Get())), L"sch\x00F6n");
    const sys::Bstr empty{std::string_view()};
    EXPECT_NE(empty.Get(), nullptr) << "WMI takes a null text for NULL";
    EXPECT_EQ(SysStringLen(empty.Get()), 0U);
}

TEST(WmiValues, ErasingATextLeavesNothingInItsMemory) {
    sys::Variant secret = sys::Variant::FromText("a secret");
    const BSTR memory = secret.Get().bstrVal;
    secret.EraseText();
    EXPECT_EQ(std::wstring(memory, 8), std::wstring(8, L'\0'));
    sys::Variant number = sys::Variant::FromInteger(7);
    number.EraseText();
    EXPECT_EQ(number.Get().lVal, 7);
}

}  // namespace
