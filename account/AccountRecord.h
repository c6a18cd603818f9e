// The account that the plug-in publishes to. The first seven fields are stored in the host's init-data
// stream; the other two are kept in memory only. There is no lock.
#pragma once

#include "com/BstrOwner.h"

#include <windows.h>

#include <limits>

// UploadLeftThisMonth of an account without a monthly limit.
constexpr INT64 UnlimitedUpload = std::numeric_limits<INT64>::max();

struct AccountRecord
{
    BstrOwner OAuthToken;
    BstrOwner OAuthTokenSecret;
    BstrOwner UserName;
    BstrOwner FullName;
    BstrOwner PhotosUrl;
    BstrOwner AccountType; // "Basic" or "Pro"; empty until the first query
    INT64 MaxFileSize = 0; // bytes; shown only, no picture is refused for it

    INT64 UploadLeftThisMonth = 0; // bytes
    bool AccountRefreshed = false; // a query of the limits was tried; until then 0 left means unknown

    // The only test for an account that may publish: both token and secret are there.
    bool IsAuthorized() const noexcept { return !OAuthToken.IsEmpty() && !OAuthTokenSecret.IsEmpty(); }
};
