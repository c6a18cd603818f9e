#include "plugin/DispatchSupport.h"

#include "com/Hresult.h"
#include "core/ThisModule.h"

#include "HVRPublishToFlickr.h"

#include <oleauto.h>

ComPtr<ITypeInfo> DispatchSupport::Info()
{
    const std::lock_guard guard(m_lock);
    if (!m_info)
    {
        ComPtr<ITypeLib> library;
        ThrowIfFailed(LoadTypeLibEx(ThisModulePath().c_str(), REGKIND_NONE, library.Put()));
        ThrowIfFailed(library->GetTypeInfoOfGuid(__uuidof(IHalvoraPublishingPlugin), m_info.Put()));
    }
    return m_info;
}

HRESULT DispatchSupport::GetTypeInfoCount(UINT *count) noexcept
{
    if (count == nullptr)
    {
        return E_INVALIDARG;
    }
    *count = 1;
    return S_OK;
}

HRESULT DispatchSupport::GetTypeInfo(UINT index, ITypeInfo **info) noexcept
{
    if (info == nullptr)
    {
        return E_INVALIDARG;
    }
    *info = nullptr;
    if (index != 0)
    {
        return DISP_E_BADINDEX;
    }
    return AtBoundary([&] {
        *info = Info().Detach();
        return S_OK;
    });
}

HRESULT DispatchSupport::GetIDsOfNames(REFIID reserved, LPOLESTR *names, UINT count, DISPID *ids) noexcept
{
    if (reserved != IID{})
    {
        return DISP_E_UNKNOWNINTERFACE;
    }
    return AtBoundary([&] { return Info()->GetIDsOfNames(names, count, ids); });
}

HRESULT DispatchSupport::Invoke(void *object, REFIID reserved, DISPID id, WORD flags, DISPPARAMS *parameters,
                                VARIANT *result, EXCEPINFO *exception, UINT *argumentError) noexcept
{
    if (reserved != IID{})
    {
        return DISP_E_UNKNOWNINTERFACE;
    }
    return AtBoundary(
        [&] { return Info()->Invoke(object, id, flags, parameters, result, exception, argumentError); });
}
