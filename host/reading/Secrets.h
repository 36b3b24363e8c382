#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/reading/File.h"

namespace host::reading {

/// Whether a key's value must not be shown: the enciphered account name and password, and what
/// looks like a misspelling of theirs.
bool IsSecretKey(std::string_view key);

/// The line as it may be printed: the value of a secret key is masked, and so is what continues it.
std::string ShownLine(const File& file, std::size_t number);

}  // namespace host::reading
