#pragma once

#include <string>

#include "common/sys/DllProxy.h"

namespace sys {

/// The agent's cryptography library, "LibCrypto.dll". The cipher and its keys are the library's.
class CryptoDll : public DllProxy {
public:
    CryptoDll();

    /// Deciphers `enciphered` into `plain` and returns the library's result unchanged. The library
    /// receives the two string objects themselves: it must have been built with this module's
    /// string type. Throws CDllProxyError when the library or its "Decrypt" is missing.
    virtual int Decrypt(const std::string& enciphered, std::string& plain);

private:
    void* decrypt_ = nullptr;  // null until it is first looked up
};

}  // namespace sys
