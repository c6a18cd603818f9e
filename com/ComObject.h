// The one implementation of IUnknown.
//
//     class CFlickrPublisher final
//         : public ComObject<CFlickrPublisher, ISupportErrorInfo, Answers<IPlugin, IDispatch>>
//
// An object counts its references, can be aggregated, holds one lock on its module, and is deleted
// at its last release. QueryInterface knows the interfaces that are listed, an Answers<I, Base...>
// also the bases of I that are named. A class may add
//     HRESULT FinishCreation();                      last step of creation; a failure undoes it
//     HRESULT QueryFurther(REFIID iid, void **out);  for interfaces that are not listed
#pragma once

#include "com/ComPtr.h"
#include "com/Hresult.h"
#include "com/ModuleLocks.h"

#include <atomic>
#include <type_traits>

template <class Interface, class... Bases>
struct Answers
{
};

namespace ComDetail
{
template <class I>
struct Entry
{
    using Type = I;
    static bool Knows(REFIID iid) noexcept { return iid == __uuidof(I); }
};

template <class I, class... Bases>
struct Entry<Answers<I, Bases...>>
{
    using Type = I;
    static bool Knows(REFIID iid) noexcept { return iid == __uuidof(I) || ((iid == __uuidof(Bases)) || ...); }
};
} // namespace ComDetail

template <class Class, class... Interfaces>
class ComObject : public ComDetail::Entry<Interfaces>::Type...
{
public:
    ComObject(const ComObject &) = delete;
    ComObject &operator=(const ComObject &) = delete;

    STDMETHODIMP QueryInterface(REFIID iid, void **object) noexcept override
    {
        return m_outer->QueryInterface(iid, object);
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return m_outer->AddRef(); }
    STDMETHODIMP_(ULONG) Release() noexcept override { return m_outer->Release(); }

    // Creates an object, with outer as its controlling unknown if that isn't null. An outer object
    // may ask for IUnknown only, and gets the inner one.
    template <class... Arguments>
    static HRESULT CreateInstance(IUnknown *outer, REFIID iid, void **object, Arguments &&...arguments) noexcept
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        if (outer != nullptr && iid != __uuidof(IUnknown))
        {
            return CLASS_E_NOAGGREGATION;
        }
        return AtBoundary([&] {
            auto *created = new Class(std::forward<Arguments>(arguments)...);
            auto inner = ComPtr<IUnknown>::Adopt(&created->m_inner);
            if (outer != nullptr)
            {
                created->m_outer = outer;
            }
            if constexpr (requires { created->FinishCreation(); })
            {
                ThrowIfFailed(created->FinishCreation());
            }
            return inner->QueryInterface(iid, object);
        });
    }

    // The same for code of this module that keeps the class itself. Throws what creation throws.
    template <class... Arguments>
    static ComPtr<Class> Make(Arguments &&...arguments)
    {
        auto created = ComPtr<Class>::Adopt(new Class(std::forward<Arguments>(arguments)...));
        if constexpr (requires { created->FinishCreation(); })
        {
            ThrowIfFailed(created->FinishCreation());
        }
        return created;
    }

protected:
    ComObject() noexcept : m_inner(this), m_outer(&m_inner) {}
    ~ComObject() = default;

    // Not counted; for objects that this one aggregates.
    IUnknown *ControllingUnknown() noexcept { return m_outer; }

private:
    class Inner final : public IUnknown
    {
    public:
        explicit Inner(ComObject *owner) noexcept : m_owner(owner) {}

        STDMETHODIMP QueryInterface(REFIID iid, void **object) noexcept override
        {
            return m_owner->QueryOwn(iid, object);
        }

        STDMETHODIMP_(ULONG) AddRef() noexcept override
        {
            return m_count.fetch_add(1, std::memory_order_relaxed) + 1;
        }

        STDMETHODIMP_(ULONG) Release() noexcept override
        {
            const ULONG left = m_count.fetch_sub(1, std::memory_order_acq_rel) - 1;
            if (left == 0)
            {
                // What is released in the destructor may take and drop references to this object.
                m_count.store(0x40000000, std::memory_order_relaxed);
                delete static_cast<Class *>(m_owner);
            }
            return left;
        }

    private:
        ComObject *m_owner;
        std::atomic<ULONG> m_count{1};
    };

    HRESULT QueryOwn(REFIID iid, void **object) noexcept
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        if (iid == __uuidof(IUnknown))
        {
            *object = static_cast<IUnknown *>(&m_inner);
            m_inner.AddRef();
            return S_OK;
        }
        if ((Offer<Interfaces>(iid, object) || ...))
        {
            return S_OK;
        }
        if constexpr (requires(Class c) { c.QueryFurther(iid, object); })
        {
            return static_cast<Class *>(this)->QueryFurther(iid, object);
        }
        return E_NOINTERFACE;
    }

    template <class Listed>
    bool Offer(REFIID iid, void **object) noexcept
    {
        if (!ComDetail::Entry<Listed>::Knows(iid))
        {
            return false;
        }
        *object = static_cast<typename ComDetail::Entry<Listed>::Type *>(this);
        AddRef();
        return true;
    }

    ModuleLock m_lock;
    Inner m_inner;
    IUnknown *m_outer;
};
