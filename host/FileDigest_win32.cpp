#include "host/FileDigest.h"

#include "host/HexDigits.h"

#include "com/HandleOwner.h"

#include <windows.h>
#include <bcrypt.h>

#include <array>
#include <new>

namespace
{
struct AlgorithmPolicy
{
    using Handle = BCRYPT_ALG_HANDLE;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { BCryptCloseAlgorithmProvider(handle, 0); }
};

struct HashPolicy
{
    using Handle = BCRYPT_HASH_HANDLE;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { BCryptDestroyHash(handle); }
};
} // namespace

std::string Sha256OfChunks(const std::function<std::string_view()> &next)
{
    HandleOwner<AlgorithmPolicy> algorithm;
    HandleOwner<HashPolicy> hash;
    if (BCryptOpenAlgorithmProvider(algorithm.Put(), BCRYPT_SHA256_ALGORITHM, nullptr, 0) < 0 ||
        BCryptCreateHash(algorithm.Get(), hash.Put(), nullptr, 0, nullptr, 0, 0) < 0)
    {
        throw std::bad_alloc();
    }
    for (std::string_view chunk = next(); !chunk.empty(); chunk = next())
    {
        // The function takes a pointer that it doesn't write through.
        BCryptHashData(hash.Get(), reinterpret_cast<PUCHAR>(const_cast<char *>(chunk.data())),
                       static_cast<ULONG>(chunk.size()), 0);
    }
    std::array<unsigned char, 32> digest{};
    BCryptFinishHash(hash.Get(), digest.data(), static_cast<ULONG>(digest.size()), 0);
    return HexDigits(digest);
}
