// VARIANT: initialising, clearing and copying of the types that automation of this system uses.
// Arrays can be cleared but not copied; records are refused with DISP_E_BADVARTYPE.
#include <windows.h>
#include <oleauto.h>

namespace
{
bool IsPlain(VARTYPE type)
{
    switch (type)
    {
    case VT_EMPTY:
    case VT_NULL:
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
    case VT_BOOL:
    case VT_ERROR:
    case VT_CY:
    case VT_DATE:
    case VT_DECIMAL:
        return true;
    default:
        return false;
    }
}

bool IsObject(VARTYPE type)
{
    return type == VT_UNKNOWN || type == VT_DISPATCH;
}

bool IsArray(VARTYPE type)
{
    return (type & (VT_ARRAY | VT_BYREF)) == VT_ARRAY && IsPlain(type & ~VT_ARRAY);
}

bool IsKnown(VARTYPE type)
{
    const VARTYPE bare = type & ~VT_BYREF;
    const bool reference = (type & VT_BYREF) != 0;
    return bare == VT_BSTR || IsObject(bare) || (bare == VT_VARIANT && reference) ||
           (IsPlain(bare) && !(reference && (bare == VT_EMPTY || bare == VT_NULL)));
}
} // namespace

void WINAPI VariantInit(VARIANTARG *variant)
{
    V_VT(variant) = VT_EMPTY;
}

HRESULT WINAPI VariantClear(VARIANTARG *variant)
{
    if (variant == nullptr)
    {
        return E_INVALIDARG;
    }
    if (IsArray(V_VT(variant)))
    {
        const HRESULT destroyed = SafeArrayDestroy(V_ARRAY(variant));
        if (SUCCEEDED(destroyed))
        {
            V_VT(variant) = VT_EMPTY;
        }
        return destroyed;
    }
    if (!IsKnown(V_VT(variant)))
    {
        return DISP_E_BADVARTYPE;
    }
    if (V_VT(variant) == VT_BSTR)
    {
        SysFreeString(V_BSTR(variant));
    }
    else if (IsObject(V_VT(variant)) && V_UNKNOWN(variant) != nullptr)
    {
        V_UNKNOWN(variant)->Release();
    }
    V_VT(variant) = VT_EMPTY;
    return S_OK;
}

HRESULT WINAPI VariantCopy(VARIANTARG *target, const VARIANTARG *source)
{
    if (target == nullptr || source == nullptr)
    {
        return E_INVALIDARG;
    }
    if (target == source)
    {
        return S_OK;
    }
    if (!IsKnown(V_VT(source)))
    {
        return DISP_E_BADVARTYPE;
    }
    VARIANT copy = *source;
    if (V_VT(source) == VT_BSTR && V_BSTR(source) != nullptr)
    {
        V_BSTR(&copy) =
            SysAllocStringByteLen(reinterpret_cast<LPCSTR>(V_BSTR(source)), SysStringByteLen(V_BSTR(source)));
        if (V_BSTR(&copy) == nullptr)
        {
            return E_OUTOFMEMORY;
        }
    }
    else if (IsObject(V_VT(source)) && V_UNKNOWN(source) != nullptr)
    {
        V_UNKNOWN(source)->AddRef();
    }
    const HRESULT cleared = VariantClear(target);
    if (FAILED(cleared))
    {
        VariantClear(&copy);
        return cleared;
    }
    *target = copy;
    return S_OK;
}
