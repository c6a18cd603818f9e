// Global and local memory: both are the C heap. A fixed block's handle is its address. That of a movable one is
// another number beside it, so that a caller who forgets to lock is found out, and its locks are counted ahead of
// it; no block ever moves.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace
{
// Addresses from the C heap are even.
constexpr ULONG_PTR MovableMark = 1;

void *AddressOf(HGLOBAL handle)
{
    return reinterpret_cast<void *>(reinterpret_cast<ULONG_PTR>(handle) & ~MovableMark);
}

bool IsMovable(HGLOBAL handle)
{
    return handle != AddressOf(handle);
}

// Ahead of a movable block; as large as the alignment of what the C heap gives.
struct alignas(std::max_align_t) Locks
{
    std::atomic<UINT> count = 0;
};

Locks &LocksOf(HGLOBAL handle)
{
    return static_cast<Locks *>(AddressOf(handle))[-1];
}
} // namespace

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size)
{
    const bool isMovable = (flags & GMEM_MOVEABLE) != 0;
    auto *memory = static_cast<char *>(
        size > SIZE_MAX / 2 ? nullptr
                            : std::calloc(isMovable ? size + sizeof(Locks) : std::max<SIZE_T>(size, 1), 1));
    if (memory == nullptr)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (isMovable)
    {
        memory += sizeof(*new (memory) Locks);
    }
    return reinterpret_cast<HGLOBAL>(reinterpret_cast<ULONG_PTR>(memory) | (isMovable ? MovableMark : 0));
}

HGLOBAL WINAPI GlobalFree(HGLOBAL handle)
{
    std::free(IsMovable(handle) ? &LocksOf(handle) : AddressOf(handle));
    return nullptr;
}

LPVOID WINAPI GlobalLock(HGLOBAL handle)
{
    if (handle == nullptr)
    {
        SetLastError(ERROR_INVALID_HANDLE);
    }
    else if (IsMovable(handle))
    {
        ++LocksOf(handle).count;
    }
    return AddressOf(handle);
}

// A fixed block always counts as locked.
BOOL WINAPI GlobalUnlock(HGLOBAL handle)
{
    if (!IsMovable(handle))
    {
        return TRUE;
    }
    const bool wasLocked = LocksOf(handle).count != 0;
    SetLastError(wasLocked ? ERROR_SUCCESS : ERROR_NOT_LOCKED);
    return wasLocked && --LocksOf(handle).count != 0;
}

HLOCAL WINAPI LocalFree(HLOCAL handle)
{
    return GlobalFree(handle);
}
