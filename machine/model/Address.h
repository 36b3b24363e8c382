// IPv4 addresses as text and as numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace machine::model {

// The address in host byte order; nothing unless the text is four decimal numbers.
std::optional<std::uint32_t> ParseAddress(std::string_view text);
std::string FormatAddress(std::uint32_t address);
bool IsMask(std::uint32_t mask);

}  // namespace machine::model
