// The stand-in for the agent's cipher: what the simulated "LibCrypto.dll" undoes with "Decrypt".
#pragma once

#include <string>
#include <string_view>

namespace machine {

/// The text reversed, letters turned by 13 places and digits by 5. It protects nothing.
std::string Encipher(std::string_view plain);
std::string Decipher(std::string_view enciphered);

}  // namespace machine
