// VARIANT: initialising and clearing of the types that automation of this system uses: numbers, texts,
// interface pointers and arrays. A reference (VT_BYREF) owns nothing.
#include <windows.h>
#include <oleauto.h>

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
    const VARTYPE type = V_VT(variant);
    HRESULT result = S_OK;
    if ((type & (VT_ARRAY | VT_BYREF)) == VT_ARRAY)
    {
        result = SafeArrayDestroy(V_ARRAY(variant));
    }
    else if (type == VT_BSTR)
    {
        SysFreeString(V_BSTR(variant));
    }
    else if ((type == VT_UNKNOWN || type == VT_DISPATCH) && V_UNKNOWN(variant) != nullptr)
    {
        V_UNKNOWN(variant)->Release();
    }
    V_VT(variant) = SUCCEEDED(result) ? VARTYPE{VT_EMPTY} : type;
    return result;
}
