#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/sys/Automation.h"

/// What WMI delivers, turned into the module's own types.
namespace sys {

/// The value as narrow text. An empty or null one is an empty text: Windows gives null for a text
/// that an adapter does not have. Throws ComError for a value that cannot be changed to text, such
/// as an array or an object.
std::string TextOf(const VARIANT& value);

/// True for VARIANT_TRUE alone; false for anything else, null included.
bool BooleanOf(const VARIANT& value) noexcept;

/// An integer as 32 bits; WMI delivers unsigned ones as VT_I4. What is no integer is converted
/// where COM can, and 0 where it cannot.
std::uint32_t IntegerOf(const VARIANT& value) noexcept;

/// The elements of an array in a VARIANT, read as texts. The array is locked while the view lives.
class SafeArrayView {
public:
    /// An empty variant is a list of no elements. Throws std::invalid_argument for a variant that
    /// holds no array (a null one too) or one of other than one dimension, and ComError when an
    /// element cannot be changed to text: null is such an element. `value` must outlive the view.
    explicit SafeArrayView(const VARIANT& value);
    ~SafeArrayView();
    SafeArrayView(const SafeArrayView&) = delete;
    SafeArrayView& operator=(const SafeArrayView&) = delete;

    std::size_t Size() const noexcept { return size_; }
    /// Counted from 0, whatever the array's lower bound.
    std::string Text(std::size_t position) const;

private:
    void Lock(SAFEARRAY* array);

    SAFEARRAY* converted_ = nullptr;  // owned: made where the elements were no texts
    SAFEARRAY* locked_ = nullptr;
    const BSTR* texts_ = nullptr;
    std::size_t size_ = 0;
};

/// The elements of a list property; none for an empty or null value.
std::vector<std::string> TextsOf(const VARIANT& value);

}  // namespace sys
