// One owner for everything that the platform frees by a function of its own: handles, keys, locked
// memory. A policy names the type, the empty value and how to free it.
#pragma once

#include <windows.h>
#include <objbase.h>

#include <utility>

template <class Policy>
class HandleOwner
{
public:
    using Handle = typename Policy::Handle;

    HandleOwner() noexcept = default;
    explicit HandleOwner(Handle handle) noexcept : m_handle(handle) {}
    HandleOwner(HandleOwner &&other) noexcept : m_handle(std::exchange(other.m_handle, Policy::Empty())) {}
    ~HandleOwner() { Reset(); }

    HandleOwner &operator=(HandleOwner other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    Handle Get() const noexcept { return m_handle; }
    explicit operator bool() const noexcept { return m_handle != Policy::Empty(); }
    [[nodiscard]] Handle Detach() noexcept { return std::exchange(m_handle, Policy::Empty()); }

    void Reset() noexcept
    {
        if (m_handle != Policy::Empty())
        {
            Policy::Free(std::exchange(m_handle, Policy::Empty()));
        }
    }

    // For an out parameter; what was held is freed first.
    Handle *Put() noexcept
    {
        Reset();
        return &m_handle;
    }

private:
    Handle m_handle = Policy::Empty();
};

struct RegistryKeyPolicy
{
    using Handle = HKEY;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { RegCloseKey(handle); }
};
using RegistryKeyOwner = HandleOwner<RegistryKeyPolicy>;

// A file, or a folder that is open as one.
struct FilePolicy
{
    using Handle = HANDLE;
    static Handle Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Free(Handle handle) noexcept { CloseHandle(handle); }
};
using FileOwner = HandleOwner<FilePolicy>;

struct LocalMemoryPolicy
{
    using Handle = WCHAR *;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { LocalFree(handle); }
};
using LocalTextOwner = HandleOwner<LocalMemoryPolicy>;

struct TaskMemoryPolicy
{
    using Handle = LPOLESTR;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { CoTaskMemFree(handle); }
};
using TaskTextOwner = HandleOwner<TaskMemoryPolicy>;

struct GlobalMemoryPolicy
{
    using Handle = HGLOBAL;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { GlobalFree(handle); }
};
using GlobalMemoryOwner = HandleOwner<GlobalMemoryPolicy>;

struct GlobalTextPolicy
{
    using Handle = WCHAR *;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { GlobalFree(handle); }
};
using GlobalTextOwner = HandleOwner<GlobalTextPolicy>;

// Unlocks, and doesn't free: the memory itself is somebody else's.
struct GlobalLockPolicy
{
    using Handle = HGLOBAL;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { GlobalUnlock(handle); }
};
using GlobalLockOwner = HandleOwner<GlobalLockPolicy>;

struct BitmapPolicy
{
    using Handle = HBITMAP;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { DeleteObject(handle); }
};
using BitmapOwner = HandleOwner<BitmapPolicy>;
