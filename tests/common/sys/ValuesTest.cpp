// Values as WMI hands them over: what OLE automation knows of arrays, and texts at the boundaries
// that speak wide characters.
#include <windows.h>

#include <oleauto.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "common/sys/Automation.h"
#include "common/sys/WideText.h"
#include "common/sys/WmiValues.h"
#include "tests/common/sys/Outcome.h"

namespace {

using namespace std::string_literals;
using namespace sys_tests;
using sys::SafeArrayView;
using Texts = std::vector<std::string>;

Texts Read(const VARIANT& value) {
    const SafeArrayView view(value);
    Texts texts;
    for (std::size_t i = 0; i < view.Size(); ++i) {
        texts.push_back(view.Text(i));
    }
    return texts;
}

sys::Variant Holding(SAFEARRAY* array, VARTYPE type) {
    sys::Variant value;
    value.Get().vt = static_cast<VARTYPE>(VT_ARRAY | type);
    value.Get().parray = array;
    return value;
}

/// An array of elements as SafeArrayPutElement takes them.
template <class Element>
sys::Variant ArrayOf(VARTYPE type, LONG lowerBound, std::vector<Element> elements) {
    SAFEARRAY* const array =
        SafeArrayCreateVector(type, lowerBound, static_cast<ULONG>(elements.size()));
    for (std::size_t i = 0; i < elements.size(); ++i) {
        LONG index = lowerBound + static_cast<LONG>(i);
        void* element = &elements[i];
        if constexpr (std::is_pointer_v<Element>) {
            element = elements[i];
        }
        EXPECT_EQ(SafeArrayPutElement(array, &index, element), S_OK);
    }
    return Holding(array, type);
}

sys::Variant TextArray(LONG lowerBound, const Texts& texts) {
    std::vector<sys::Bstr> owners;
    std::vector<BSTR> elements;
    for (const std::string& text : texts) {
        elements.push_back(owners.emplace_back(std::string_view(text)).Get());
    }
    return ArrayOf(VT_BSTR, lowerBound, elements);
}

sys::Variant VariantArray(const std::vector<const VARIANT*>& elements) {
    std::vector<VARIANT*> pointers;
    for (const VARIANT* const element : elements) {
        pointers.push_back(const_cast<VARIANT*>(element));
    }
    return ArrayOf(VT_VARIANT, 0, pointers);
}

TEST(SafeArrayView, ElementsAreCountedFromZeroWhateverTheLowerBound) {
    for (const LONG lowerBound : {0, 2, -3}) {
        EXPECT_EQ(Read(TextArray(lowerBound, {"one", "", "three"}).Get()),
                  (Texts{"one", "", "three"}));
        EXPECT_EQ(Read(ArrayOf<LONG>(VT_I4, lowerBound, {7, -8}).Get()), (Texts{"7", "-8"}));
        EXPECT_EQ(Read(ArrayOf<LONG>(VT_I4, lowerBound, {}).Get()), Texts{});
    }
}

TEST(SafeArrayView, OtherElementTypesAreChangedToTexts) {
    const sys::Variant text = sys::Variant::FromText("text");
    const sys::Variant number = sys::Variant::FromInteger(42);
    const sys::Variant empty;
    struct Case {
        sys::Variant value;
        Texts texts;
    };
    const Case cases[] = {
        {ArrayOf<SHORT>(VT_I2, 1, {-2}), {"-2"}},
        {ArrayOf<ULONG>(VT_UI4, 0, {4294967295U}), {"4294967295"}},
        {ArrayOf<double>(VT_R8, 0, {1.5}), {"1.5"}},
        {ArrayOf<VARIANT_BOOL>(VT_BOOL, 0, {VARIANT_TRUE, VARIANT_FALSE}), {"-1", "0"}},
        {VariantArray({&text.Get(), &number.Get(), &empty.Get()}), {"text", "42", ""}},
    };
    for (const auto& [value, texts] : cases) {
        EXPECT_EQ(Read(value.Get()), texts) << "variant type " << value.Type();
    }
}

TEST(SafeArrayView, WhatIsNoListIsRefused) {
    const Outcome noArray = RefusedArgument("Invalid argument passed to attach()");
    const sys::Variant empty;
    EXPECT_EQ(Read(empty.Get()), Texts{});
    sys::Variant null;
    null.Get().vt = VT_NULL;
    EXPECT_EQ(OutcomeOf([&] { Read(null.Get()); }), noArray);
    EXPECT_EQ(OutcomeOf([&] { Read(sys::Variant::FromInteger(1).Get()); }), noArray);
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    const sys::Variant table = Holding(SafeArrayCreate(VT_BSTR, 2, bounds), VT_BSTR);
    EXPECT_EQ(OutcomeOf([&] { Read(table.Get()); }),
              RefusedArgument("Only one-dimensional arrays are supported"));
    // The properties that may be absent: null is an empty list there.
    EXPECT_EQ(sys::TextsOf(null.Get()), Texts{});
    EXPECT_EQ(OutcomeOf([&] { sys::TextsOf(sys::Variant::FromText("x").Get()); }), noArray);
    // The second element cannot become text, when the first one has been converted already.
    const sys::Variant text = sys::Variant::FromText("text");
    EXPECT_EQ(OutcomeOf([&] {
                  Read(VariantArray({&text.Get(), &null.Get()}).Get());
              }),
              ComFailure(static_cast<std::uint32_t>(DISP_E_TYPEMISMATCH)));
}

TEST(WmiValues, ATextThatIsNullIsEmptyAndOneThatIsNoneIsRefused) {
    sys::Variant null;
    null.Get().vt = VT_NULL;
    EXPECT_EQ(sys::TextOf(null.Get()), "");
    EXPECT_EQ(sys::TextOf(sys::Variant().Get()), "");
    // An address that is null: not 0.0.0.0, which is a route's destination.
    EXPECT_EQ(ipc::IPv4Address(sys::TextOf(null.Get())).ToString(), "255.255.255.255");
    for (const Texts& list : {Texts{}, Texts{"text"}}) {
        EXPECT_EQ(OutcomeOf([&] { sys::TextOf(TextArray(0, list).Get()); }),
                  ComFailure(static_cast<std::uint32_t>(DISP_E_TYPEMISMATCH)));
    }
}

TEST(WmiValues, BooleansAndIntegers) {
    struct Case {
        VARTYPE type;
        LONGLONG content;
        bool boolean;
        std::uint32_t integer;
    };
    const Case cases[] = {
        {VT_BOOL, VARIANT_TRUE, true, 0xFFFFFFFF},
        {VT_BOOL, VARIANT_FALSE, false, 0},
        {VT_BOOL, 1, false, 1},  // neither of the two: not true
        {VT_NULL, -1, false, 0},
        {VT_EMPTY, -1, false, 0},
        {VT_I4, -1, false, 0xFFFFFFFF},  // how WMI delivers an unsigned 4294967295
        {VT_UI1, 200, false, 200},
    };
    for (const Case& c : cases) {
        VARIANT value;
        VariantInit(&value);
        value.vt = c.type;
        value.llVal = c.content;
        EXPECT_EQ(sys::BooleanOf(value), c.boolean) << "type " << c.type;
        EXPECT_EQ(sys::IntegerOf(value), c.integer) << "type " << c.type;
    }
    EXPECT_EQ(sys::IntegerOf(sys::Variant::FromText("12").Get()), 12U);
    EXPECT_EQ(sys::IntegerOf(sys::Variant::FromText("no number").Get()), 0U);
}

TEST(WideText, EveryByteOfTheCodePageSurvivesTheWayThereAndBack) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string narrow(1, static_cast<char>(byte));
        const std::wstring wide = sys::Widen(narrow);
        // The few bytes that the code page does not define have no way back.
        BOOL replaced = FALSE;
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), 1, nullptr, 0, nullptr,
                            &replaced);
        EXPECT_TRUE(replaced != FALSE || sys::Narrow(wide) == narrow) << byte;
    }
    EXPECT_EQ(sys::Widen("a\0b"s), L"a\0b"s);
    EXPECT_EQ(sys::Narrow(L"a\0b"s), "a\0b"s);
    EXPECT_EQ(sys::Narrow(L"\x4E2D"), "?") << "not in the code page";
    EXPECT_STREQ(sys::WideToMBCSString(L"owned").Get(), "owned");
    const sys::Bstr narrow(std::string_view("sch\xF6n"));
    EXPECT_EQ(std::wstring(narrow.Get(), SysStringLen(narrow.Get())), L"sch\x00F6n");
    const sys::Bstr empty{std::string_view()};
    EXPECT_NE(empty.Get(), nullptr) << "WMI takes a null text for NULL";
    EXPECT_EQ(SysStringLen(empty.Get()), 0U);
}

TEST(WideText, ErasingOverwritesEverythingThatTheTextOwns) {
    std::wstring secret = L"a secret that is too long to be kept inside the object";
    const wchar_t* const memory = secret.data();
    const std::size_t length = secret.size();
    sys::SecureErase(secret);
    EXPECT_TRUE(secret.empty());
    EXPECT_EQ(secret.data(), memory) << "the memory was given back before it was overwritten";
    EXPECT_EQ(std::wstring(memory, length), std::wstring(length, L'\0'));

    sys::Variant variant = sys::Variant::FromText("a secret");
    const BSTR content = variant.Get().bstrVal;
    variant.EraseText();
    EXPECT_EQ(std::wstring(content, 8), std::wstring(8, L'\0'));
    sys::Variant number = sys::Variant::FromInteger(7);
    number.EraseText();
    EXPECT_EQ(number.Get().lVal, 7);
}

}  // namespace
