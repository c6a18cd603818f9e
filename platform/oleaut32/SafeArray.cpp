// Arrays of one dimension whose elements are plain numbers, bytes above all: that is what components
// hand each other here. Other element types are refused.
#include <windows.h>
#include <oleauto.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace
{
// The public descriptor, preceded by the element type, as FADF_HAVEVARTYPE says.
struct TypedArray
{
    DWORD unused[3];
    DWORD type;
    SAFEARRAY array;
};

TypedArray *Typed(SAFEARRAY *array)
{
    return reinterpret_cast<TypedArray *>(reinterpret_cast<BYTE *>(array) - offsetof(TypedArray, array));
}

ULONG ElementSize(VARTYPE type)
{
    switch (type)
    {
    case VT_I1:
    case VT_UI1:
        return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
        return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
        return 8;
    default:
        return 0;
    }
}
} // namespace

SAFEARRAY *WINAPI SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements)
{
    const ULONG size = ElementSize(type);
    auto *const typed = size != 0 ? new (std::nothrow) TypedArray{} : nullptr;
    if (typed == nullptr)
    {
        return nullptr;
    }
    // The data of an empty array has an address too.
    void *const data = std::calloc(elements != 0 ? elements : 1, size);
    if (data == nullptr)
    {
        delete typed;
        return nullptr;
    }
    typed->type = type;
    typed->array = {1, FADF_HAVEVARTYPE, size, 0, data, {{elements, lowerBound}}};
    return &typed->array;
}

HRESULT WINAPI SafeArrayDestroy(SAFEARRAY *array)
{
    if (array == nullptr)
    {
        return S_OK;
    }
    if (array->cLocks != 0)
    {
        return DISP_E_ARRAYISLOCKED;
    }
    std::free(array->pvData);
    delete Typed(array);
    return S_OK;
}

HRESULT WINAPI SafeArrayAccessData(SAFEARRAY *array, void **data)
{
    if (array == nullptr || data == nullptr)
    {
        return E_INVALIDARG;
    }
    if (array->cLocks == 0xFFFF)
    {
        *data = nullptr;
        return E_UNEXPECTED;
    }
    ++array->cLocks;
    *data = array->pvData;
    return S_OK;
}

HRESULT WINAPI SafeArrayUnaccessData(SAFEARRAY *array)
{
    if (array == nullptr)
    {
        return E_INVALIDARG;
    }
    if (array->cLocks == 0)
    {
        return E_UNEXPECTED;
    }
    --array->cLocks;
    return S_OK;
}

UINT WINAPI SafeArrayGetDim(SAFEARRAY *array)
{
    return array != nullptr ? array->cDims : 0;
}

HRESULT WINAPI SafeArrayGetLBound(SAFEARRAY *array, UINT dimension, LONG *bound)
{
    if (array == nullptr || bound == nullptr)
    {
        return E_INVALIDARG;
    }
    if (dimension != 1)
    {
        return DISP_E_BADINDEX;
    }
    *bound = array->rgsabound[0].lLbound;
    return S_OK;
}

HRESULT WINAPI SafeArrayGetUBound(SAFEARRAY *array, UINT dimension, LONG *bound)
{
    const HRESULT result = SafeArrayGetLBound(array, dimension, bound);
    if (SUCCEEDED(result))
    {
        *bound += static_cast<LONG>(array->rgsabound[0].cElements) - 1;
    }
    return result;
}

HRESULT WINAPI SafeArrayGetVartype(SAFEARRAY *array, VARTYPE *type)
{
    if (array == nullptr || type == nullptr)
    {
        return E_INVALIDARG;
    }
    *type = static_cast<VARTYPE>(Typed(array)->type);
    return S_OK;
}
