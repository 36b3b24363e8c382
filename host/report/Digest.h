#pragma once

#include <string>
#include <string_view>

namespace host::report {

/// The SHA-256 digest as sha256sum and Get-FileHash print it, in small letters. Throws HostError
/// where Windows cannot compute one.
std::string Sha256(std::string_view bytes);

}  // namespace host::report
