// The module object: what keeps the module loaded, its one class object, and its registration.
#pragma once

#include "com/ClassFactory.h"
#include "plugin/FlickrPublisher.h"
#include "plugin/ModuleRegistration.h"

#include <atomic>
#include <mutex>
#include <optional>

class CFlickrModule
{
public:
    // handle is this module's. With null, for a module that the loader doesn't know, it isn't set up.
    explicit CFlickrModule(HMODULE handle) noexcept;
    ~CFlickrModule();
    CFlickrModule(const CFlickrModule &) = delete;
    CFlickrModule &operator=(const CFlickrModule &) = delete;

    // The count of live objects, of class objects held from outside, and of explicit locks.
    static void IncrementLocks() noexcept { ModuleLocks::Increment(); }
    static void DecrementLocks() noexcept { ModuleLocks::Decrement(); }
    static long ReadLocks() noexcept { return ModuleLocks::Read(); }

    // S_OK if nothing holds the module, else S_FALSE.
    HRESULT CanUnload() const noexcept;

    // The class object is made at the first request and kept. E_POINTER; E_UNEXPECTED if the module isn't set
    // up; CLASS_E_CLASSNOTAVAILABLE; E_NOINTERFACE.
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void **object) noexcept;

    // For the scope that Install chose, or the machine before that. Register leaves the entries that it wrote
    // before a failure.
    HRESULT Register() noexcept;
    HRESULT Unregister() noexcept;

    // commandLine may be null. "user", in any case, makes the user the scope for the rest of the process.
    // A registration that fails is undone, and its failure returned.
    HRESULT Install(bool install, const WCHAR *commandLine) noexcept;

private:
    std::atomic<bool> m_isSetUp;
    std::atomic<RegistrationScope> m_scope{RegistrationScope::Machine};
    std::mutex m_lock;
    std::optional<ClassFactory<CFlickrPublisher>> m_factory;
};
