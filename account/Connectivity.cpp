#include "account/Connectivity.h"

#include "account/AccountQueries.h"
#include "account/AccountRecord.h"

HRESULT AnswerCanPublish(AccountRecord &account, const VersionBlock &version, bool withCheck)
{
    if (!account.IsAuthorized())
    {
        return S_FALSE;
    }
    if (!withCheck)
    {
        return S_OK;
    }
    return SUCCEEDED(QueryUploadStatus(account, version)) && account.UploadLeftThisMonth != 0 ? S_OK : S_FALSE;
}
