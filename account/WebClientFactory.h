// Web clients that are ready to talk to the photo service.
#pragma once

#include "com/ComPtr.h"

#include "WebComponents.h"

struct AccountRecord;
class VersionBlock;

// A fresh client, set up with the application's credentials and, if the account has a token pair, with
// that pair. The version becomes part of the user agent. Returns null on any failure, without a reason.
ComPtr<IOAuthWebClient> CreateWebClient(const AccountRecord &account, const VersionBlock &version) noexcept;
