#include "machine/Cipher.h"

namespace machine {
namespace {

char Turn(char c, char first, int places) {
    return static_cast<char>(first + (c - first + places) % (2 * places));
}

char Turn(char c) {
    if (c >= 'a' && c <= 'z') {
        return Turn(c, 'a', 13);
    }
    if (c >= 'A' && c <= 'Z') {
        return Turn(c, 'A', 13);
    }
    if (c >= '0' && c <= '9') {
        return Turn(c, '0', 5);
    }
    return c;
}

}  // namespace

std::string Encipher(std::string_view plain) {
    std::string enciphered(plain.rbegin(), plain.rend());
    for (char& c : enciphered) {
        c = Turn(c);
    }
    return enciphered;
}

/// The transformation is its own inverse.
std::string Decipher(std::string_view enciphered) {
    return Encipher(enciphered);
}

}  // namespace machine
