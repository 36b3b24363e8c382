#include "machine/wmi/Variants.h"

#include "machine/WideText.h"

namespace machine::wmi {

using cim::Type;
using cim::Value;

namespace {

HRESULT ToArray(const TextList& texts, VARIANT& variant) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size()));
    if (array == nullptr) {
        return E_OUTOFMEMORY;
    }
    for (LONG i = 0; i < static_cast<LONG>(texts.size()); ++i) {
        const std::wstring wide = Widen(texts[static_cast<std::size_t>(i)]);
        BSTR text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
        const HRESULT result =
            text == nullptr ? E_OUTOFMEMORY : SafeArrayPutElement(array, &i, text);
        SysFreeString(text);
        if (FAILED(result)) {
            SafeArrayDestroy(array);
            return result;
        }
    }
    variant.vt = VT_ARRAY | VT_BSTR;
    variant.parray = array;
    return S_OK;
}

std::optional<Value> FromTextArray(const VARIANT& variant) {
    if (variant.vt != (VT_ARRAY | VT_BSTR) || SafeArrayGetDim(variant.parray) != 1) {
        return std::nullopt;
    }
    LONG first = 0;
    LONG last = -1;
    SafeArrayGetLBound(variant.parray, 1, &first);
    SafeArrayGetUBound(variant.parray, 1, &last);
    TextList texts;
    for (LONG i = first; i <= last; ++i) {
        BSTR text = nullptr;
        if (FAILED(SafeArrayGetElement(variant.parray, &i, &text))) {
            return std::nullopt;
        }
        texts.push_back(text == nullptr ? std::string()
                                        : Narrow(std::wstring_view(text, SysStringLen(text))));
        SysFreeString(text);
    }
    return Value(std::move(texts));
}

}  // namespace

CIMTYPE CimTypeOf(Type type) {
    switch (type) {
        case Type::kBoolean:
            return CIM_BOOLEAN;
        case Type::kUInt16:
            return CIM_UINT16;
        case Type::kUInt32:
            return CIM_UINT32;
        case Type::kSInt32:
            return CIM_SINT32;
        case Type::kText:
            return CIM_STRING;
        case Type::kTexts:
            return CIM_STRING | CIM_FLAG_ARRAY;
        case Type::kUInt16s:
            return CIM_UINT16 | CIM_FLAG_ARRAY;
    }
    return CIM_EMPTY;
}

HRESULT ToVariant(const Value& value, VARIANT& variant) {
    VariantInit(&variant);
    variant.vt = VT_NULL;
    if (const bool* flag = std::get_if<bool>(&value)) {
        variant.vt = VT_BOOL;
        variant.boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const std::int32_t* number = std::get_if<std::int32_t>(&value)) {
        variant.vt = VT_I4;
        variant.lVal = *number;
    } else if (const std::string* text = std::get_if<std::string>(&value)) {
        const std::wstring wide = Widen(*text);
        variant.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
        if (variant.bstrVal == nullptr) {
            return E_OUTOFMEMORY;
        }
        variant.vt = VT_BSTR;
    } else if (const TextList* texts = std::get_if<TextList>(&value)) {
        return ToArray(*texts, variant);
    }
    return S_OK;
}

std::optional<Value> FromVariant(const VARIANT& variant, Type type) {
    if (variant.vt == VT_NULL || variant.vt == VT_EMPTY) {
        return Value();
    }
    switch (type) {
        case Type::kBoolean:
            return variant.vt == VT_BOOL ? std::optional<Value>(variant.boolVal != VARIANT_FALSE)
                                         : std::nullopt;
        case Type::kUInt16:
        case Type::kUInt32:
        case Type::kSInt32:
            // WMI takes the signed type for its unsigned numbers, as Automation has no other.
            return variant.vt == VT_I4 ? std::optional<Value>(std::int32_t{variant.lVal})
                                       : std::nullopt;
        case Type::kText:
            if (variant.vt != VT_BSTR) {
                return std::nullopt;
            }
            return Value(
                variant.bstrVal == nullptr
                    ? std::string()
                    : Narrow(std::wstring_view(variant.bstrVal, SysStringLen(variant.bstrVal))));
        case Type::kTexts:
            return FromTextArray(variant);
        case Type::kUInt16s:
            // Gateway metrics: taken, not kept.
            return variant.vt == (VT_ARRAY | VT_I4) ? std::optional<Value>(Value()) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace machine::wmi
