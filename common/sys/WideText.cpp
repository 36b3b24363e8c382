#include "common/sys/WideText.h"

#include <windows.h>

namespace sys {

// The conversions refuse an empty text and set the thread's last error, which a later report would
// show.

WideToMBCSString::WideToMBCSString(std::wstring_view wide) {
    if (wide.empty()) {
        return;
    }
    const int wideLength = static_cast<int>(wide.size());
    const int length =
        WideCharToMultiByte(CP_ACP, 0, wide.data(), wideLength, nullptr, 0, nullptr, nullptr);
    narrow_.resize(static_cast<std::size_t>(length));
    WideCharToMultiByte(CP_ACP, 0, wide.data(), wideLength, narrow_.data(), length, nullptr,
                        nullptr);
}

std::string Narrow(std::wstring_view wide) {
    return WideToMBCSString(wide).Text();
}

std::wstring Widen(std::string_view narrow) {
    std::wstring wide;  // the only object returned: none that held a secret is left on the stack
    if (!narrow.empty()) {
        const int narrowLength = static_cast<int>(narrow.size());
        const int length = MultiByteToWideChar(CP_ACP, 0, narrow.data(), narrowLength, nullptr, 0);
        wide.resize(static_cast<std::size_t>(length));
        MultiByteToWideChar(CP_ACP, 0, narrow.data(), narrowLength, wide.data(), length);
    }
    return wide;
}

void SecureErase(std::wstring& text) noexcept {
    text.resize(text.capacity());
    SecureZeroMemory(text.data(), text.size() * sizeof(wchar_t));
    text.clear();
}

}  // namespace sys
