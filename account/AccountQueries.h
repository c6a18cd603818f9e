// Queries of the account at the service. All block the calling thread for as long as the web
// client takes, show nothing and log nothing. E_UNEXPECTED if no web client can be made; a string that
// can't be allocated throws E_OUTOFMEMORY.
#pragma once

#include <windows.h>

struct AccountRecord;
class VersionBlock;

// Reads the names, the address of the photos page and then the limits. Returns the failure of the
// first request, else the result of QueryUploadStatus, which is what fails for a token that was revoked.
HRESULT RefreshAccount(AccountRecord &account, const VersionBlock &version);

// Reads level and limits. A failure leaves the account "Basic" and, unless a value was read before the
// failure, its limits as they were: E_POINTER if the request failed, E_FAIL if the service refused or
// a value is missing from its reply.
HRESULT QueryUploadStatus(AccountRecord &account, const VersionBlock &version);

// Answers the host's question whether publishing is possible now, by S_OK or S_FALSE. Without the check the token pair
// alone decides. With it the limits are read from the service, which blocks the calling thread and refreshes the
// account; an exhausted allowance counts as no, and so does any failure. Throws E_OUTOFMEMORY.
HRESULT AnswerCanPublish(AccountRecord &account, const VersionBlock &version, bool withCheck);
