// A hash by the system's cryptographic library (bcrypt.h), or with a key a message authentication code.
#pragma once

#include "com/HandleOwner.h"

#include <bcrypt.h>

#include <string_view>

struct HashAlgorithmPolicy
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

// Each member returns false if the library fails, after which there is no hash.
class HashOwner
{
public:
    // The algorithm is one of the names in bcrypt.h, BCRYPT_SHA256_ALGORITHM for example.
    bool Start(const WCHAR *algorithm) noexcept { return Create(algorithm, {}, 0); }
    bool StartWithKey(const WCHAR *algorithm, std::string_view key) noexcept
    {
        return Create(algorithm, key, BCRYPT_ALG_HANDLE_HMAC_FLAG);
    }

    bool Add(std::string_view bytes) noexcept
    {
        return BCryptHashData(m_hash.Get(), Bytes(bytes), static_cast<ULONG>(bytes.size()), 0) >= 0;
    }

    // The digest has the length that the algorithm gives.
    template <class Digest>
    bool Finish(Digest &digest) noexcept
    {
        return BCryptFinishHash(m_hash.Get(), digest.data(), static_cast<ULONG>(digest.size()), 0) >= 0;
    }

private:
    bool Create(const WCHAR *algorithm, std::string_view key, ULONG flags) noexcept
    {
        return BCryptOpenAlgorithmProvider(m_algorithm.Put(), algorithm, nullptr, flags) >= 0 &&
               BCryptCreateHash(m_algorithm.Get(), m_hash.Put(), nullptr, 0, Bytes(key),
                                static_cast<ULONG>(key.size()), 0) >= 0;
    }

    // The functions take pointers that they don't write through.
    static PUCHAR Bytes(std::string_view text) noexcept
    {
        return reinterpret_cast<PUCHAR>(const_cast<char *>(text.data()));
    }

    HandleOwner<HashAlgorithmPolicy> m_algorithm; // freed after its hash
    HandleOwner<HashPolicy> m_hash;
};
