// Texts of a machine file that are only shown may hold characters that the code page lacks: a
// connection's name, which the module never asks for.
#pragma once

#include <string>

namespace machine::file {

/// In the code page. Where that lacks a character, all beyond ASCII stand as JSON escapes them:
/// "\u4e2d". `utf8` is valid UTF-8.
std::string ShownText(const std::string& utf8);

/// The UTF-8 that a text came from.
std::string FromShownText(const std::string& text);

}  // namespace machine::file
