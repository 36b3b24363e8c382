#include "host/Text.h"

#include <windows.h>

#include <algorithm>
#include <limits>

#include "common/util/Strings.h"

namespace host {

namespace {

std::wstring Widen(std::string_view text) {
    const int length = static_cast<int>(text.size());
    // No MB_ERR_INVALID_CHARS: what is no character becomes the replacement character.
    const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), needed);
    return wide;
}

}  // namespace

std::string ToUtf8(std::string_view text) {
    // Windows counts in int; a longer text is cut, which only a memory hog would meet.
    text = text.substr(0, std::numeric_limits<int>::max() / 4);
    if (text.empty()) {
        return {};
    }
    const std::wstring wide = Widen(text);
    const int length = static_cast<int>(wide.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), needed, nullptr, nullptr);
    return utf8;
}

std::size_t CountCharacters(std::string_view utf8) {
    const auto isFirstByte = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    };
    return static_cast<std::size_t>(std::ranges::count_if(utf8, isFirstByte));
}

std::string ToLine(std::string_view text) {
    std::string line;
    for (const char character : ToUtf8(text)) {
        const auto byte = static_cast<unsigned char>(character);
        if ((byte < 0x20 && character != '\t') || byte == 0x7F) {
            line += util::Format("\\x%02X", static_cast<unsigned>(byte));
        } else {
            line += character;
        }
    }
    return line;
}

std::size_t ShownWidth(std::string_view text) {
    return CountCharacters(ToLine(text));
}

std::string Padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(ShownWidth(text), width), ' ');
}

std::string RightAligned(const std::string& text, std::size_t width) {
    return std::string(width - std::min(ShownWidth(text), width), ' ') + text;
}

std::string Grouped(std::size_t number) {
    constexpr std::size_t kGroup = 3;
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.size(); end > kGroup; end -= kGroup) {
        digits.insert(end - kGroup, ",");
    }
    return digits;
}

std::string Counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string ShellWord(const std::string& text) {
    const bool isPlain = std::ranges::all_of(text, [](char character) {
        return util::IsLetter(character) || util::IsDigit(character) ||
               std::string_view("-_./:\\,@+=").find(character) != std::string_view::npos;
    });
    return isPlain && !text.empty() ? text : '"' + text + '"';
}

std::string DescribeSystemError(std::uint32_t code) {
    char buffer[512];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, code, 0, buffer, sizeof buffer, nullptr);
    while (length > 0 && (buffer[length - 1] == '\n' || buffer[length - 1] == '\r' ||
                          buffer[length - 1] == ' ')) {
        --length;
    }
    const std::string number = util::Format("error %lu", static_cast<unsigned long>(code));
    return length == 0 ? number : std::string(buffer, length) + " (" + number + ")";
}

}  // namespace host
