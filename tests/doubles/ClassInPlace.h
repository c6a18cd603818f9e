// Registers a class of the test in place of a component, for CoCreateInstance in this process, while this
// object lives.
#pragma once

#include "com/ComObject.h"
#include "com/Hresult.h"

#include <objbase.h>

#include <functional>

class ClassInPlace
{
public:
    // create is called for each new object and returns S_OK with a reference, or the failure of creation.
    using Create = std::function<HRESULT(REFIID iid, void **object)>;

    ClassInPlace(REFCLSID clsid, Create create)
    {
        const auto factory = Factory::Make(std::move(create));
        ThrowIfFailed(
            CoRegisterClassObject(clsid, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie));
    }
    ~ClassInPlace() { CoRevokeClassObject(m_cookie); }
    ClassInPlace(const ClassInPlace &) = delete;
    ClassInPlace &operator=(const ClassInPlace &) = delete;

private:
    class Factory final : public ComObject<Factory, IClassFactory>
    {
    public:
        explicit Factory(Create create) : m_create(std::move(create)) {}

        STDMETHODIMP CreateInstance(IUnknown *outer, REFIID iid, void **object) noexcept override
        {
            *object = nullptr;
            return outer ? CLASS_E_NOAGGREGATION : m_create(iid, object);
        }
        STDMETHODIMP LockServer(BOOL) noexcept override { return S_OK; }

    private:
        Create m_create;
    };

    DWORD m_cookie = 0;
};
