#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace sys {

/// Owner of one BSTR, made from narrow text in the system code page or from wide text.
class Bstr {
public:
    /// Throw ComError (E_OUTOFMEMORY) when there is no memory for the text.
    explicit Bstr(std::string_view narrow);
    explicit Bstr(std::wstring_view wide);
    Bstr(Bstr&& other) noexcept : text_(other.Release()) {}
    Bstr& operator=(Bstr&&) = delete;
    ~Bstr() { SysFreeString(text_); }

    BSTR Get() const noexcept { return text_; }
    BSTR Release() noexcept { return std::exchange(text_, nullptr); }

private:
    BSTR text_ = nullptr;
};

/// Owner of one VARIANT and of what it holds.
class Variant {
public:
    Variant() noexcept { VariantInit(&value_); }
    ~Variant() { VariantClear(&value_); }
    Variant(Variant&& other) noexcept : value_(other.value_) { VariantInit(&other.value_); }
    Variant& operator=(Variant&&) = delete;

    /// The makers of texts throw ComError when there is no memory for one.
    static Variant FromText(std::string_view narrow);
    static Variant FromInteger(std::int32_t value) noexcept;
    /// A one-dimensional array of texts with the lower bound 0.
    static Variant FromTexts(const std::vector<std::string>& texts);

    VARIANT& Get() noexcept { return value_; }
    const VARIANT& Get() const noexcept { return value_; }
    VARTYPE Type() const noexcept { return value_.vt; }

    VARIANT* Receive() noexcept {
        VariantClear(&value_);
        return &value_;
    }

    /// Overwrites a text before it is freed.
    void EraseText() noexcept;

private:
    VARIANT value_{};
};

}  // namespace sys
