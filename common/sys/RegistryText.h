#pragma once

#include <string>

namespace sys {

/// A text value of a key below HKEY_LOCAL_MACHINE. Throws RegistryError when the key or the value
/// cannot be read.
std::string ReadLocalMachineText(const std::string& subkey, const std::string& name);

}  // namespace sys
