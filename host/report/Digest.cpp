#include "host/report/Digest.h"

#include <windows.h>

#include <bcrypt.h>

#include <array>

#include "common/lang/Handle.h"
#include "common/util/Strings.h"
#include "host/HostError.h"

namespace host::report {

namespace {

struct AlgorithmTraits {
    using Type = BCRYPT_ALG_HANDLE;
    static Type None() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct HashTraits {
    using Type = BCRYPT_HASH_HANDLE;
    static Type None() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { BCryptDestroyHash(handle); }
};

void Require(NTSTATUS status) {
    if (status < 0) {
        throw HostError(util::Format("cannot compute a SHA-256 digest: BCrypt gave 0x%08lX",
                                     static_cast<unsigned long>(status)));
    }
}

}  // namespace

std::string Sha256(std::string_view bytes) {
    constexpr std::size_t kPiece = 1 << 30;  // Windows counts in ULONG
    lang::UniqueHandle<AlgorithmTraits> algorithm;
    lang::UniqueHandle<HashTraits> hash;
    std::array<UCHAR, 32> digest{};
    Require(BCryptOpenAlgorithmProvider(algorithm.Receive(), BCRYPT_SHA256_ALGORITHM, nullptr, 0));
    Require(BCryptCreateHash(algorithm.Get(), hash.Receive(), nullptr, 0, nullptr, 0, 0));
    while (!bytes.empty()) {
        // The interface takes what it only reads as if it would write it.
        std::string piece(bytes.substr(0, kPiece));
        Require(BCryptHashData(hash.Get(), reinterpret_cast<UCHAR*>(piece.data()),
                               static_cast<ULONG>(piece.size()), 0));
        bytes.remove_prefix(piece.size());
    }
    Require(BCryptFinishHash(hash.Get(), digest.data(), static_cast<ULONG>(digest.size()), 0));
    std::string text;
    for (const UCHAR byte : digest) {
        text += util::Format("%02x", static_cast<unsigned>(byte));
    }
    return text;
}

}  // namespace host::report
