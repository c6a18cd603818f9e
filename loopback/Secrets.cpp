#include "loopback/Secrets.h"

#include "com/Hash.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

#include <stdexcept>
#include <vector>

namespace loopback
{

namespace
{

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
    const auto mac = ::HmacSha1(key, message).value();
    unsigned char text[EVP_MAX_MD_SIZE * 2];
    const int length = EVP_EncodeBlock(text, mac.data(), static_cast<int>(mac.size()));
    return std::string(reinterpret_cast<char *>(text), static_cast<std::size_t>(length));
}

bool EqualSecretly(std::string_view one, std::string_view other)
{
    return one.size() == other.size() && CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0;
}

std::string RandomHex(std::size_t bytes)
{
    return HexDigits(RandomBytes(bytes));
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

} // namespace loopback
