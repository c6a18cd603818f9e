#include "webclient/HmacSha1.h"

// Without the cryptography headers of Windows, which use some names of OpenSSL for macros.
#define WIN32_LEAN_AND_MEAN
#include "com/Hresult.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>

HmacSha1Digest HmacSha1(std::string_view key, std::string_view message)
{
    HmacSha1Digest digest{};
    unsigned length = digest.size();
    const auto *bytes = reinterpret_cast<const unsigned char *>(message.data());
    if (HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()), bytes, message.size(), digest.data(),
             &length) == nullptr)
    {
        ThrowHresult(E_FAIL);
    }
    return digest;
}
