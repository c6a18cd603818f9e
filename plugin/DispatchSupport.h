// IDispatch of the plug-in's dual interface. On Windows it is answered from the type library in the module's
// resources, which is loaded at the first call that needs it; natively it says that there is no type library.
// Any thread.
#pragma once

#include "com/ComPtr.h"

#include <windows.h>
#include <oaidl.h>

#include <mutex>

class DispatchSupport
{
public:
    HRESULT GetTypeInfoCount(UINT *count) noexcept;
    HRESULT GetTypeInfo(UINT index, ITypeInfo **info) noexcept;
    HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR *names, UINT count, DISPID *ids) noexcept;

    // Calls an operation of object, which is the dual interface that the library describes.
    HRESULT Invoke(void *object, REFIID reserved, DISPID id, WORD flags, DISPPARAMS *parameters, VARIANT *result,
                   EXCEPINFO *exception, UINT *argumentError) noexcept;

private:
    // Throws the failure of loading the library.
    ComPtr<ITypeInfo> Info();

    std::mutex m_lock;
    ComPtr<ITypeInfo> m_info;
};
