// Answers the host's question whether publishing is possible now.
#pragma once

#include <windows.h>

struct AccountRecord;
class VersionBlock;

// S_OK or S_FALSE. Without the check the token pair alone decides. With it the limits are read from the
// service, which blocks the calling thread and refreshes the account; an exhausted allowance counts as no,
// and so does any failure. Throws E_OUTOFMEMORY.
HRESULT AnswerCanPublish(AccountRecord &account, const VersionBlock &version, bool withCheck);
