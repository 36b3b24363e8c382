#pragma once

#include <string>
#include <typeinfo>

namespace lang {

/// "class config::command::SetDns": spelled the same under every compiler.
std::string ClassName(const std::type_info& type);

}  // namespace lang
