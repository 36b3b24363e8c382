#include <windows.h>

#include "machine/CodePage.h"
#include "machine/WideText.h"

namespace machine {

std::optional<std::string> FromUtf8(std::string_view text) {
    if (text.empty()) {
        return std::string();
    }
    const int size = static_cast<int>(text.size());
    const int wideSize = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(wideSize), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), wideSize);
    std::string narrow = Narrow(std::wstring_view(wide));
    // What only resembles a character is none.
    return Widen(narrow) == wide ? std::optional(std::move(narrow)) : std::nullopt;
}

std::string ToUtf8(std::string_view text) {
    const std::wstring wide = Widen(text);
    if (wide.empty()) {
        return {};
    }
    const int size = static_cast<int>(wide.size());
    const int narrowSize =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(narrowSize), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), narrowSize, nullptr, nullptr);
    return utf8;
}

}  // namespace machine
