#include "webclient/HmacSha1.h"

#include "com/HashOwner_win32.h"
#include "com/Hresult.h"

HmacSha1Digest HmacSha1(std::string_view key, std::string_view message)
{
    HashOwner hash;
    HmacSha1Digest digest{};
    if (!hash.StartWithKey(BCRYPT_SHA1_ALGORITHM, key) || !hash.Add(message) || !hash.Finish(digest))
    {
        ThrowHresult(E_FAIL);
    }
    return digest;
}
