#include "com/Hash.h"

#include "com/HandleOwner.h"

#include <bcrypt.h>

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

// The functions take pointers that they don't write through.
PUCHAR Bytes(std::string_view text) noexcept
{
    return reinterpret_cast<PUCHAR>(const_cast<char *>(text.data()));
}

// Each member returns false if the library fails, after which there is no hash.
struct HashOwner
{
    HandleOwner<AlgorithmPolicy> algorithm; // freed after its hash
    HandleOwner<HashPolicy> hash;

    bool Start(const WCHAR *name, std::string_view key, ULONG flags) noexcept
    {
        return BCryptOpenAlgorithmProvider(algorithm.Put(), name, nullptr, flags) >= 0 &&
               BCryptCreateHash(algorithm.Get(), hash.Put(), nullptr, 0, Bytes(key),
                                static_cast<ULONG>(key.size()), 0) >= 0;
    }
    bool Add(std::string_view bytes) noexcept
    {
        return BCryptHashData(hash.Get(), Bytes(bytes), static_cast<ULONG>(bytes.size()), 0) >= 0;
    }
    bool Finish(std::span<unsigned char> digest) noexcept
    {
        return BCryptFinishHash(hash.Get(), digest.data(), static_cast<ULONG>(digest.size()), 0) >= 0;
    }
};
} // namespace

struct Sha256::Hash : HashOwner
{
};

Sha256::Sha256() : m_hash(std::make_unique<Hash>())
{
    if (!m_hash->Start(BCRYPT_SHA256_ALGORITHM, {}, 0))
    {
        throw std::bad_alloc();
    }
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view bytes)
{
    m_hash->Add(bytes);
}

std::string Sha256::Finish()
{
    std::array<unsigned char, 32> digest{};
    m_hash->Finish(digest);
    return HexDigits(digest);
}

std::optional<Sha1Digest> HmacSha1(std::string_view key, std::string_view message)
{
    HashOwner hash;
    Sha1Digest digest{};
    return hash.Start(BCRYPT_SHA1_ALGORITHM, key, BCRYPT_ALG_HANDLE_HMAC_FLAG) && hash.Add(message) &&
                   hash.Finish(digest)
               ? std::optional(digest)
               : std::nullopt;
}
