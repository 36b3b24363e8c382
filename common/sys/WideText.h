#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Conversions at the boundaries that speak wide text. The system code page (CP_ACP) throughout.
namespace sys {

/// Owns a narrow copy of a wide text for the life of the object.
class WideToMBCSString {
public:
    explicit WideToMBCSString(std::wstring_view wide);
    const char* Get() const noexcept { return narrow_.c_str(); }
    const std::string& Text() const noexcept { return narrow_; }

private:
    std::string narrow_;
};

std::string Narrow(std::wstring_view wide);
std::wstring Widen(std::string_view narrow);

/// Overwrites all the memory that the string owns and leaves it empty.
void SecureErase(std::wstring& text) noexcept;

}  // namespace sys
