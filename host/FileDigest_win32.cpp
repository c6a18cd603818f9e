#include "host/FileDigest.h"

#include "com/HashOwner_win32.h"

#include <new>

Sha256Digest Sha256OfChunks(const std::function<std::string_view()> &next)
{
    HashOwner hash;
    if (!hash.Start(BCRYPT_SHA256_ALGORITHM))
    {
        throw std::bad_alloc();
    }
    for (std::string_view chunk = next(); !chunk.empty(); chunk = next())
    {
        hash.Add(chunk);
    }
    Sha256Digest digest{};
    hash.Finish(digest);
    return digest;
}
