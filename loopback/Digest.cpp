#include "loopback/Digest.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

namespace loopback
{

std::string HmacSha1(std::string_view key, std::string_view message)
{
    unsigned char mac[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()),
         reinterpret_cast<const unsigned char *>(message.data()), message.size(), mac, &size);
    unsigned char text[EVP_MAX_MD_SIZE * 2];
    const int length = EVP_EncodeBlock(text, mac, static_cast<int>(size));
    return std::string(reinterpret_cast<char *>(text), static_cast<std::size_t>(length));
}

bool EqualSecretly(std::string_view one, std::string_view other)
{
    return one.size() == other.size() && CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0;
}

void Sha256::Release::operator()(evp_md_ctx_st *context) const
{
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : m_context(EVP_MD_CTX_new())
{
    EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr);
}

Sha256::~Sha256() = default;

void Sha256::Add(std::string_view bytes)
{
    EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size());
}

std::string Sha256::Finish()
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context.get(), digest, &size);
    std::string text;
    for (unsigned i = 0; i < size; ++i)
    {
        text += fmt::format("{:02x}", digest[i]);
    }
    return text;
}

} // namespace loopback
