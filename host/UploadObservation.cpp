#include "host/UploadObservation.h"

#include "com/ComObject.h"
#include "com/ComPtr.h"

#include <objbase.h>

namespace
{
// Its "new" objects are the one observer.
class ObserverFactory final : public ComObject<ObserverFactory, IClassFactory>
{
public:
    explicit ObserverFactory(IUploadObserver &observer) : m_observer(&observer) {}

    STDMETHODIMP CreateInstance(IUnknown *outer, REFIID iid, void **object) noexcept override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : m_observer->QueryInterface(iid, object);
    }
    STDMETHODIMP LockServer(BOOL) noexcept override { return S_OK; }

private:
    const ComPtr<IUploadObserver> m_observer;
};
} // namespace

UploadObservation::UploadObservation(IUploadObserver &observer) noexcept
{
    AtBoundary([&] {
        return CoRegisterClassObject(CLSID_UploadObserver, ObserverFactory::Make(observer).Get(),
                                     CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
    });
}

UploadObservation::~UploadObservation()
{
    if (m_cookie != 0)
    {
        CoRevokeClassObject(m_cookie);
    }
}
