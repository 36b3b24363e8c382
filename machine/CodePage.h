// Between UTF-8 and the system's code page, in which the texts of a machine's state are.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace machine {

/// Nothing when a character has no counterpart in the code page. `text` is valid UTF-8.
std::optional<std::string> FromUtf8(std::string_view text);
std::string ToUtf8(std::string_view text);

}  // namespace machine
