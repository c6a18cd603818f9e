// Class factory of one class. It lives as long as its module; references from outside hold one
// lock on the module together, the object itself none.
#pragma once

#include "com/ModuleLocks.h"

#include <windows.h>
#include <unknwn.h>

#include <atomic>

template <class Class>
class ClassFactory final : public IClassFactory
{
public:
    STDMETHODIMP QueryInterface(REFIID iid, void **object) noexcept override
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        if (iid != __uuidof(IUnknown) && iid != __uuidof(IClassFactory))
        {
            return E_NOINTERFACE;
        }
        *object = static_cast<IClassFactory *>(this);
        AddRef();
        return S_OK;
    }

    STDMETHODIMP_(ULONG) AddRef() noexcept override
    {
        const ULONG count = ++m_count;
        if (count == 1)
        {
            ModuleLocks::Increment();
        }
        return count;
    }

    STDMETHODIMP_(ULONG) Release() noexcept override
    {
        const ULONG count = --m_count;
        if (count == 0)
        {
            ModuleLocks::Decrement();
        }
        return count;
    }

    STDMETHODIMP CreateInstance(IUnknown *outer, REFIID iid, void **object) noexcept override
    {
        return Class::CreateInstance(outer, iid, object);
    }

    STDMETHODIMP LockServer(BOOL lock) noexcept override
    {
        lock ? ModuleLocks::Increment() : ModuleLocks::Decrement();
        return S_OK;
    }

private:
    std::atomic<ULONG> m_count{0};
};
