// Global and local memory: both are the C heap. A fixed block's handle is its address. That of a movable one is
// another number beside it, so that a caller who forgets to lock is found out; no block ever moves.
#include <windows.h>

#include <cstdlib>

namespace
{
// Addresses from the C heap are even.
constexpr ULONG_PTR MovableMark = 1;

void *AddressOf(HGLOBAL handle)
{
    return reinterpret_cast<void *>(reinterpret_cast<ULONG_PTR>(handle) & ~MovableMark);
}
} // namespace

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size)
{
    void *const memory = std::calloc(size != 0 ? size : 1, 1);
    if (memory == nullptr)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const ULONG_PTR mark = flags & GMEM_MOVEABLE ? MovableMark : 0;
    return reinterpret_cast<HGLOBAL>(reinterpret_cast<ULONG_PTR>(memory) | mark);
}

HGLOBAL WINAPI GlobalFree(HGLOBAL handle)
{
    std::free(AddressOf(handle));
    return nullptr;
}

LPVOID WINAPI GlobalLock(HGLOBAL handle)
{
    if (handle == nullptr)
    {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    return AddressOf(handle);
}

BOOL WINAPI GlobalUnlock(HGLOBAL handle)
{
    SetLastError(ERROR_SUCCESS);
    return handle == AddressOf(handle);
}

HLOCAL WINAPI LocalFree(HLOCAL handle)
{
    return GlobalFree(handle);
}
