// Between the ANSI code page and UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace machine {

std::string Narrow(std::wstring_view text);
/// An empty text for null.
std::string Narrow(const wchar_t* text);
std::wstring Widen(std::string_view text);

}  // namespace machine
