// The marshaler that says that every thread may call an object directly. Natively there are no apartments to
// marshal between, so nobody asks it to.
#include "com/ComObject.h"

#include <objbase.h>
#include <objidl.h>

namespace
{
class FreeThreadedMarshaler final : public ComObject<FreeThreadedMarshaler, IMarshal>
{
public:
    STDMETHODIMP GetUnmarshalClass(REFIID, void *, DWORD, void *, DWORD, CLSID *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetMarshalSizeMax(REFIID, void *, DWORD, void *, DWORD, DWORD *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP MarshalInterface(IStream *, REFIID, void *, DWORD, void *, DWORD) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP UnmarshalInterface(IStream *, REFIID, void **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP ReleaseMarshalData(IStream *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DisconnectObject(DWORD) noexcept override { return E_NOTIMPL; }
};
} // namespace

HRESULT WINAPI CoCreateFreeThreadedMarshaler(LPUNKNOWN outer, LPUNKNOWN *marshaler)
{
    if (marshaler == nullptr)
    {
        return E_INVALIDARG;
    }
    return FreeThreadedMarshaler::CreateInstance(outer, __uuidof(IUnknown), reinterpret_cast<void **>(marshaler));
}
