// What the plug-in knows of the account on whose behalf it publishes. The first seven fields travel
// in the host's init-data stream; the other two live in memory alone. No lock.
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
    INT64 MaxFileSize = 0; // bytes; shown, never held against a picture

    INT64 UploadLeftThisMonth = 0; // bytes
    bool AccountRefreshed = false; // a query of the limits was tried; until then 0 left means unknown

    // The one test for an account that may publish: token and secret are both there.
    bool IsAuthorized() const noexcept { return !OAuthToken.IsEmpty() && !OAuthTokenSecret.IsEmpty(); }
};
