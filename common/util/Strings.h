#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Small functions on narrow text. None throws an error of the module's family; letter case follows
/// the classic "C" locale, whatever locale the process has set.
namespace util {

/// printf into a new string. Empty when `format` is null or nothing is written.
#ifdef __GNUC__
__attribute__((format(printf, 1, 2)))
#endif
std::string
Format(const char* format, ...);

/// The same for an argument list already started (which stays the caller's to end). Empty when
/// `format` or `arguments` is null.
std::string FormatV(const char* format, std::va_list arguments);

std::string IntToString(std::int32_t value);

/// Base 10 reads like atoi, any other base like strtol: leading white space is skipped, reading
/// stops at the first character that is no digit, 0 when there is none. A value out of range
/// becomes the nearest 32-bit one.
std::int32_t StringToInt(std::string_view text, std::uint32_t base = 10);

/// Upper-cased comparison, byte by byte; a prefix sorts first.
bool NoCaseLess(std::string_view left, std::string_view right) noexcept;
bool NoCaseEqual(std::string_view left, std::string_view right) noexcept;

/// The upper-case form of one byte; only 'a' to 'z' change.
constexpr char ToUpper(char character) noexcept {
    return character >= 'a' && character <= 'z' ? static_cast<char>(character - ('a' - 'A'))
                                                : character;
}

/// A letter of the classic "C" locale. Takes any byte.
constexpr bool IsLetter(char character) noexcept {
    return ToUpper(character) >= 'A' && ToUpper(character) <= 'Z';
}

constexpr bool IsDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

/// Without the blanks and tabs at both ends; a view into `text`.
constexpr std::string_view TrimBlanks(std::string_view text) noexcept {
    const auto isBlank = [](char character) { return character == ' ' || character == '\t'; };
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

/// The pieces between the separators, empty ones and the last one included: at least one. They are
/// views into `text`.
std::vector<std::string_view> SplitAt(std::string_view text, char separator);

/// Every "%" doubled: for text from outside that goes into a log line, because the host formats the
/// finished line once more.
std::string DoublePercents(std::string_view text);

/// Overwrites all the memory that the string owns and leaves it empty. The writes are not optimised
/// away.
void SecureErase(std::string& text) noexcept;

/// Erases a secret when the scope ends, on every path.
class SecretGuard {
public:
    explicit SecretGuard(std::string& secret) noexcept : secret_(secret) {}
    ~SecretGuard() { SecureErase(secret_); }
    SecretGuard(const SecretGuard&) = delete;
    SecretGuard& operator=(const SecretGuard&) = delete;

private:
    std::string& secret_;
};

}  // namespace util
