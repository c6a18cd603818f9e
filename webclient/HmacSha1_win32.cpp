#include "webclient/HmacSha1.h"

#include "com/HandleOwner.h"
#include "com/Hresult.h"

#include <bcrypt.h>

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

void Check(NTSTATUS status)
{
    if (status < 0)
    {
        ThrowHresult(E_FAIL);
    }
}

// The functions take pointers that they don't write through.
PUCHAR Bytes(std::string_view text)
{
    return reinterpret_cast<PUCHAR>(const_cast<char *>(text.data()));
}
} // namespace

HmacSha1Digest HmacSha1(std::string_view key, std::string_view message)
{
    HandleOwner<AlgorithmPolicy> algorithm;
    Check(
        BCryptOpenAlgorithmProvider(algorithm.Put(), BCRYPT_SHA1_ALGORITHM, nullptr, BCRYPT_ALG_HANDLE_HMAC_FLAG));
    HandleOwner<HashPolicy> hash;
    Check(
        BCryptCreateHash(algorithm.Get(), hash.Put(), nullptr, 0, Bytes(key), static_cast<ULONG>(key.size()), 0));
    Check(BCryptHashData(hash.Get(), Bytes(message), static_cast<ULONG>(message.size()), 0));
    HmacSha1Digest digest{};
    Check(BCryptFinishHash(hash.Get(), digest.data(), digest.size(), 0));
    return digest;
}
