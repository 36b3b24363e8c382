#include "common/sys/CryptoDll.h"

namespace sys {

CryptoDll::CryptoDll() : DllProxy("LibCrypto.dll") {}

int CryptoDll::Decrypt(const std::string& enciphered, std::string& plain) {
    using Function = int (*)(const std::string&, std::string&);
    if (decrypt_ == nullptr) {
        GetProcAddress(decrypt_, "Decrypt");
    }
    return reinterpret_cast<Function>(decrypt_)(enciphered, plain);
}

}  // namespace sys
