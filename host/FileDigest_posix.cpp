#include "host/FileDigest.h"

#include <openssl/evp.h>

#include <memory>
#include <new>

Sha256Digest Sha256OfChunks(const std::function<std::string_view()> &next)
{
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    if (!context || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1)
    {
        throw std::bad_alloc();
    }
    for (std::string_view chunk = next(); !chunk.empty(); chunk = next())
    {
        EVP_DigestUpdate(context.get(), chunk.data(), chunk.size());
    }
    Sha256Digest digest{};
    EVP_DigestFinal_ex(context.get(), digest.data(), nullptr);
    return digest;
}
