#include "common/sys/WmiValues.h"

#include <stdexcept>

#include "common/sys/ComError.h"
#include "common/sys/WideText.h"
#include "common/util/Strings.h"

namespace sys {

Bstr::Bstr(std::string_view narrow) {
    // Straight into the BSTR: no copy of a secret is left behind. An empty text is not converted:
    // it would be refused and set the thread's last error, which a failure report shows.
    const int narrowLength = static_cast<int>(narrow.size());
    const int length =
        narrow.empty() ? 0
                       : MultiByteToWideChar(CP_ACP, 0, narrow.data(), narrowLength, nullptr, 0);
    text_ = SysAllocStringLen(nullptr, static_cast<UINT>(length));
    if (text_ == nullptr) {
        throw ComError(E_OUTOFMEMORY);
    }
    if (length != 0) {
        MultiByteToWideChar(CP_ACP, 0, narrow.data(), narrowLength, text_, length);
    }
}

Bstr::Bstr(std::wstring_view wide)
    : text_(SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()))) {
    if (text_ == nullptr) {
        throw ComError(E_OUTOFMEMORY);
    }
}

namespace {

class ArrayOwner {
public:
    explicit ArrayOwner(SAFEARRAY* array) : array_(array) {
        if (array_ == nullptr) {
            throw ComError(E_OUTOFMEMORY);
        }
    }
    ~ArrayOwner() {
        if (array_ != nullptr) {
            SafeArrayDestroy(array_);
        }
    }
    ArrayOwner(const ArrayOwner&) = delete;
    ArrayOwner& operator=(const ArrayOwner&) = delete;

    SAFEARRAY* Release() noexcept { return std::exchange(array_, nullptr); }

    /// Copies the text in.
    void Put(LONG index, BSTR text) {
        const HRESULT result = SafeArrayPutElement(array_, &index, text);
        if (FAILED(result)) {
            throw ComError(result);
        }
    }

private:
    SAFEARRAY* array_;
};

bool IsEmptyOrNull(const VARIANT& value) noexcept {
    return value.vt == VT_EMPTY || value.vt == VT_NULL;
}

/// The value as a text.
Variant ChangeToText(const VARIANT& value) {
    Variant text;
    // VariantChangeType wants a source that it may write to; it does not.
    const HRESULT result = VariantChangeType(&text.Get(), const_cast<VARIANT*>(&value), 0, VT_BSTR);
    if (FAILED(result)) {
        throw ComError(result);
    }
    return text;
}

Variant ElementOf(SAFEARRAY* array, VARTYPE type, LONG index) {
    Variant element;
    void* target = &element.Get().llVal;
    if (type == VT_VARIANT) {
        target = &element.Get();
    } else if (type == VT_DECIMAL) {
        target = &element.Get().decVal;
    }
    const HRESULT result = SafeArrayGetElement(array, &index, target);
    if (FAILED(result)) {
        throw ComError(result);
    }
    if (type != VT_VARIANT) {
        element.Get().vt = type;
    }
    return element;
}

/// A copy of `array` whose elements are texts, with the same bounds.
SAFEARRAY* ConvertToTexts(SAFEARRAY* array, VARTYPE type, LONG lowerBound, std::size_t count) {
    ArrayOwner texts(SafeArrayCreateVector(VT_BSTR, lowerBound, static_cast<ULONG>(count)));
    for (std::size_t i = 0; i < count; ++i) {
        const LONG index = lowerBound + static_cast<LONG>(i);
        const Variant text = ChangeToText(ElementOf(array, type, index).Get());
        texts.Put(index, text.Get().bstrVal);
    }
    return texts.Release();
}

}  // namespace

Variant Variant::FromText(std::string_view narrow) {
    Variant variant;
    variant.value_.bstrVal = Bstr(narrow).Release();
    variant.value_.vt = VT_BSTR;
    return variant;
}

Variant Variant::FromInteger(std::int32_t value) noexcept {
    Variant variant;
    variant.value_.lVal = value;
    variant.value_.vt = VT_I4;
    return variant;
}

Variant Variant::FromTexts(const std::vector<std::string>& texts) {
    ArrayOwner array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(texts.size())));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        array.Put(static_cast<LONG>(i), Bstr(std::string_view(texts[i])).Get());
    }
    Variant variant;
    variant.value_.parray = array.Release();
    variant.value_.vt = VT_ARRAY | VT_BSTR;
    return variant;
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what the variant holds.
void Variant::EraseText() noexcept {
    if (Type() == VT_BSTR && value_.bstrVal != nullptr) {
        SecureZeroMemory(value_.bstrVal, SysStringByteLen(value_.bstrVal));
    }
}

std::string TextOf(const VARIANT& value) {
    if (IsEmptyOrNull(value)) {
        return {};
    }
    const Variant text = ChangeToText(value);
    return Narrow({text.Get().bstrVal, SysStringLen(text.Get().bstrVal)});
}

bool BooleanOf(const VARIANT& value) noexcept {
    return value.vt == VT_BOOL && value.boolVal == VARIANT_TRUE;
}

std::uint32_t IntegerOf(const VARIANT& value) noexcept {
    if (value.vt == VT_I4 || value.vt == VT_UI4) {
        return value.ulVal;
    }
    Variant integer;
    const HRESULT result =
        VariantChangeType(&integer.Get(), const_cast<VARIANT*>(&value), 0, VT_I4);
    return SUCCEEDED(result) ? integer.Get().ulVal : 0;
}

SafeArrayView::SafeArrayView(const VARIANT& value) {
    if (value.vt == VT_EMPTY) {
        return;
    }
    if ((value.vt & VT_ARRAY) == 0) {
        throw std::invalid_argument("Invalid argument passed to attach()");
    }
    const bool byReference = (value.vt & VT_BYREF) != 0;
    if (byReference && value.pparray == nullptr) {
        throw std::invalid_argument("Invalid argument passed to attach()");
    }
    SAFEARRAY* const array = byReference ? *value.pparray : value.parray;
    if (SafeArrayGetDim(array) != 1) {  // no array at all has no dimension either
        throw std::invalid_argument("Only one-dimensional arrays are supported");
    }
    LONG lowerBound = 0;
    LONG upperBound = -1;
    SafeArrayGetLBound(array, 1, &lowerBound);
    SafeArrayGetUBound(array, 1, &upperBound);
    size_ = static_cast<std::size_t>(static_cast<long long>(upperBound) - lowerBound + 1);
    const auto type = static_cast<VARTYPE>(value.vt & VT_TYPEMASK);
    if (type != VT_BSTR) {
        converted_ = ConvertToTexts(array, type, lowerBound, size_);
    }
    Lock(type == VT_BSTR ? array : converted_);
}

void SafeArrayView::Lock(SAFEARRAY* array) {
    void* data = nullptr;
    const HRESULT result = SafeArrayAccessData(array, &data);
    if (FAILED(result)) {
        if (converted_ != nullptr) {
            SafeArrayDestroy(converted_);
        }
        throw ComError(result);
    }
    locked_ = array;
    texts_ = static_cast<const BSTR*>(data);
}

SafeArrayView::~SafeArrayView() {
    if (locked_ != nullptr) {
        SafeArrayUnaccessData(locked_);
    }
    if (converted_ != nullptr) {
        SafeArrayDestroy(converted_);
    }
}

std::string SafeArrayView::Text(std::size_t position) const {
    BSTR const text = texts_[position];
    return Narrow({text, SysStringLen(text)});
}

std::vector<std::string> TextsOf(const VARIANT& value) {
    std::vector<std::string> texts;
    if (!IsEmptyOrNull(value)) {
        const SafeArrayView array(value);
        for (std::size_t i = 0; i < array.Size(); ++i) {
            texts.push_back(array.Text(i));
        }
    }
    return texts;
}

}  // namespace sys
