// Small text functions that the simulated machine shares.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace machine {

/// ASCII letters compare without regard to case, as Windows compares names.
bool EqualNoCase(std::string_view left, std::string_view right);
bool ContainsNoCase(std::string_view text, std::string_view part);
std::string LowerCase(std::string_view text);
/// Without blanks and tabs at both ends.
std::string_view Trim(std::string_view text);
std::vector<std::string> Split(std::string_view text, char separator);
std::string Join(const std::vector<std::string>& parts, std::string_view separator);
/// "0x80041002"
std::string Hex(std::uint64_t number);

/// An empty text for null.
std::string OrEmpty(const char* text);

}  // namespace machine
