#include "machine/WideText.h"

#include <windows.h>

namespace machine {

std::string Narrow(std::wstring_view text) {
    const int size = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), narrow.data(), size,
                        nullptr, nullptr);
    return narrow;
}

std::wstring Widen(std::string_view text) {
    const int size =
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
    return wide;
}

std::string Narrow(const wchar_t* text) {
    return text == nullptr ? std::string() : Narrow(std::wstring_view(text));
}

}  // namespace machine
