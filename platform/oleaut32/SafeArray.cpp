// Arrays of one dimension whose elements are bytes: that is what components hand each other here. Other
// element types are refused.
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
} // namespace

SAFEARRAY *WINAPI SafeArrayCreateVector(VARTYPE type, LONG lowerBound, ULONG elements)
{
    auto *const typed = type == VT_UI1 ? new (std::nothrow) TypedArray{} : nullptr;
    if (typed == nullptr)
    {
        return nullptr;
    }
    // The data of an empty array has an address too.
    void *const data = std::calloc(elements != 0 ? elements : 1, 1);
    if (data == nullptr)
    {
        delete typed;
        return nullptr;
    }
    typed->type = type;
    typed->array = {1, FADF_HAVEVARTYPE, 1, 0, data, {{elements, lowerBound}}};
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
