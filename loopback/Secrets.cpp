#include "loopback/Secrets.h"

#include <fmt/format.h>
#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <stdexcept>
#include <vector>

namespace loopback
{

namespace
{

std::string Hexadecimal(const unsigned char *bytes, std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
    {
        text += fmt::format("{:02x}", bytes[i]);
    }
    return text;
}

std::vector<unsigned char> RandomBytes(std::size_t count)
{
    std::vector<unsigned char> bytes(count);
    if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1)
    {
        throw std::runtime_error("the random generator gives nothing");
    }
    return bytes;
}

} // namespace

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

std::string RandomHex(std::size_t bytes)
{
    const auto random = RandomBytes(bytes);
    return Hexadecimal(random.data(), bytes);
}

std::string RandomDigits(std::size_t count)
{
    std::string text;
    for (const unsigned char byte : RandomBytes(count))
    {
        text += static_cast<char>('0' + byte % 10);
    }
    return text;
}

std::string NewToken()
{
    return "72157" + RandomDigits(12) + "-" + RandomHex(8);
}

void Sha256::Release::operator()(evp_md_ctx_st *context) const
{
    EVP_MD_CTX_free(context);
}

Sha256::Sha256() : m_context(EVP_MD_CTX_new())
{
    EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr);
}

void Sha256::Add(std::string_view bytes)
{
    EVP_DigestUpdate(m_context.get(), bytes.data(), bytes.size());
}

std::string Sha256::Finish()
{
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EVP_DigestFinal_ex(m_context.get(), digest, &size);
    return Hexadecimal(digest, size);
}

} // namespace loopback
