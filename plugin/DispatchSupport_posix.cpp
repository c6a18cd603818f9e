// Natively nothing reads type libraries: there are no scripts that would call by name.
#include "plugin/DispatchSupport.h"

HRESULT DispatchSupport::GetTypeInfoCount(UINT *count) noexcept
{
    if (count == nullptr)
    {
        return E_INVALIDARG;
    }
    *count = 0;
    return S_OK;
}

HRESULT DispatchSupport::GetTypeInfo(UINT, ITypeInfo **info) noexcept
{
    if (info == nullptr)
    {
        return E_INVALIDARG;
    }
    *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT DispatchSupport::GetIDsOfNames(REFIID, LPOLESTR *, UINT, DISPID *) noexcept
{
    return TYPE_E_CANTLOADLIBRARY;
}

HRESULT DispatchSupport::Invoke(void *, REFIID, DISPID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *,
                                UINT *) noexcept
{
    return TYPE_E_CANTLOADLIBRARY;
}
