#include "com/Hash.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <new>

struct Sha256::Hash
{
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), EVP_MD_CTX_free};
};

Sha256::Sha256() : m_hash(std::make_unique<Hash>())
{
    if (!m_hash->context || EVP_DigestInit_ex(m_hash->context.get(), EVP_sha256(), nullptr) != 1)
    {
        throw std::bad_alloc();
    }
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view bytes)
{
    EVP_DigestUpdate(m_hash->context.get(), bytes.data(), bytes.size());
}

std::string Sha256::Finish()
{
    std::array<unsigned char, 32> digest{};
    EVP_DigestFinal_ex(m_hash->context.get(), digest.data(), nullptr);
    return HexDigits(digest);
}

std::optional<Sha1Digest> HmacSha1(std::string_view key, std::string_view message)
{
    Sha1Digest digest{};
    const auto *bytes = reinterpret_cast<const unsigned char *>(message.data());
    return HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()), bytes, message.size(), digest.data(),
                nullptr) != nullptr
               ? std::optional(digest)
               : std::nullopt;
}
