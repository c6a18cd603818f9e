// Owner of one reference to a COM object.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <cstddef>
#include <utility>

template <class T>
class ComPtr
{
public:
    ComPtr() noexcept = default;
    ComPtr(std::nullptr_t) noexcept {}

    // Takes a reference of its own.
    explicit ComPtr(T *object) noexcept : m_object(object) { Acquire(); }
    ComPtr(const ComPtr &other) noexcept : m_object(other.m_object) { Acquire(); }
    ComPtr(ComPtr &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}

    template <class U>
    ComPtr(const ComPtr<U> &other) noexcept : m_object(other.Get())
    {
        Acquire();
    }

    ~ComPtr() { Reset(); }

    ComPtr &operator=(ComPtr other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    // Takes over the reference that the caller holds.
    static ComPtr Adopt(T *object) noexcept
    {
        ComPtr result;
        result.m_object = object;
        return result;
    }

    T *Get() const noexcept { return m_object; }
    T *operator->() const noexcept { return m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

    // Gives the reference to the caller.
    [[nodiscard]] T *Detach() noexcept { return std::exchange(m_object, nullptr); }

    void Reset() noexcept
    {
        if (T *object = std::exchange(m_object, nullptr))
        {
            object->Release();
        }
    }

    // For an out parameter; what was held is released first.
    T **Put() noexcept
    {
        Reset();
        return &m_object;
    }

    void **PutVoid() noexcept { return reinterpret_cast<void **>(Put()); }

    // The same object by another interface; null if it has none.
    template <class U>
    ComPtr<U> As() const noexcept
    {
        ComPtr<U> result;
        if (m_object != nullptr && FAILED(m_object->QueryInterface(__uuidof(U), result.PutVoid())))
        {
            return nullptr;
        }
        return result;
    }

private:
    void Acquire() noexcept
    {
        if (m_object != nullptr)
        {
            m_object->AddRef();
        }
    }

    T *m_object = nullptr;
};

// object->QueryInterface for T; null if object is null or has no such interface.
template <class T>
ComPtr<T> QueryFor(IUnknown *object) noexcept
{
    ComPtr<T> result;
    if (object != nullptr && FAILED(object->QueryInterface(__uuidof(T), result.PutVoid())))
    {
        return nullptr;
    }
    return result;
}
