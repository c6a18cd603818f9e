#include "webclient/UploadObserver.h"

#include "WebComponents.h"
#include "com/ComPtr.h"

#include <objbase.h>

void TellUploadObserver(HRESULT result, IUnknown *reply) noexcept
{
    ComPtr<IUploadObserver> observer;
    if (SUCCEEDED(CoCreateInstance(CLSID_UploadObserver, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUploadObserver),
                                   observer.PutVoid())))
    {
        observer->OnUploadReply(result, reply);
    }
}
