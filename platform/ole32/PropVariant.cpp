// Values of properties: freeing what they hold. Of the types that hold something these are the ones of metadata. And
// task memory, which is the C heap: what one side allocates the other may free.
#include <windows.h>
#include <objbase.h>
#include <propidl.h>

#include <cstdlib>
#include <cstring>

namespace
{
void Free(PROPVARIANT &value)
{
    switch (value.vt)
    {
    case VT_LPSTR:
    case VT_LPWSTR:
        CoTaskMemFree(value.pwszVal);
        break;
    case VT_BLOB:
        CoTaskMemFree(value.blob.pBlobData);
        break;
    case VT_UNKNOWN:
        if (value.punkVal != nullptr)
        {
            value.punkVal->Release();
        }
        break;
    case VT_VECTOR | VT_LPSTR:
    case VT_VECTOR | VT_LPWSTR:
        for (ULONG i = 0; i < value.calpwstr.cElems; ++i)
        {
            CoTaskMemFree(value.calpwstr.pElems[i]);
        }
        CoTaskMemFree(value.calpwstr.pElems);
        break;
    default:
        if ((value.vt & VT_VECTOR) != 0) // of numbers
        {
            CoTaskMemFree(value.caub.pElems);
        }
    }
}
} // namespace

HRESULT WINAPI PropVariantClear(PROPVARIANT *value)
{
    if (value != nullptr)
    {
        Free(*value);
        std::memset(value, 0, sizeof *value);
    }
    return S_OK;
}

LPVOID WINAPI CoTaskMemAlloc(SIZE_T size)
{
    return std::malloc(size ? size : 1);
}

void WINAPI CoTaskMemFree(LPVOID memory)
{
    std::free(memory);
}
