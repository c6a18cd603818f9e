// Values of properties: freeing what they hold. The types are those of metadata and of plain values;
// another one is refused as Windows does, with STG_E_INVALIDPARAMETER.
#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <propidl.h>

#include <cstring>

namespace
{
template <class Array, class Free>
void FreeElements(Array &array, Free free)
{
    for (ULONG i = 0; i < array.cElems; ++i)
    {
        free(array.pElems[i]);
    }
    CoTaskMemFree(array.pElems);
}

HRESULT Free(PROPVARIANT &value)
{
    switch (value.vt)
    {
    case VT_EMPTY:
    case VT_NULL:
    case VT_BOOL:
    case VT_ERROR:
    case VT_FILETIME:
    case VT_DATE:
    case VT_CY:
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
        return S_OK;
    case VT_LPSTR:
    case VT_LPWSTR:
    case VT_CLSID:
        CoTaskMemFree(value.pwszVal);
        return S_OK;
    case VT_BSTR:
        SysFreeString(value.bstrVal);
        return S_OK;
    case VT_BLOB:
        CoTaskMemFree(value.blob.pBlobData);
        return S_OK;
    case VT_UNKNOWN:
    case VT_DISPATCH:
        if (value.punkVal != nullptr)
        {
            value.punkVal->Release();
        }
        return S_OK;
    case VT_VECTOR | VT_LPSTR:
    case VT_VECTOR | VT_LPWSTR:
        FreeElements(value.calpwstr, CoTaskMemFree);
        return S_OK;
    case VT_VECTOR | VT_BSTR:
        FreeElements(value.cabstr, SysFreeString);
        return S_OK;
    case VT_VECTOR | VT_I1:
    case VT_VECTOR | VT_UI1:
    case VT_VECTOR | VT_I2:
    case VT_VECTOR | VT_UI2:
    case VT_VECTOR | VT_I4:
    case VT_VECTOR | VT_UI4:
    case VT_VECTOR | VT_I8:
    case VT_VECTOR | VT_UI8:
    case VT_VECTOR | VT_R4:
    case VT_VECTOR | VT_R8:
    case VT_VECTOR | VT_BOOL:
        CoTaskMemFree(value.caub.pElems);
        return S_OK;
    default:
        return STG_E_INVALIDPARAMETER;
    }
}
} // namespace

HRESULT WINAPI PropVariantClear(PROPVARIANT *value)
{
    if (value == nullptr)
    {
        return S_OK;
    }
    const HRESULT result = Free(*value);
    std::memset(value, 0, sizeof *value);
    return result;
}
