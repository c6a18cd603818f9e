#include "plugin/FlickrModule.h"

#include "core/TextPieces.h"

CFlickrModule::CFlickrModule(HMODULE handle) noexcept : m_isSetUp(handle != nullptr) {}

// A request that comes while the process unloads the module is refused.
CFlickrModule::~CFlickrModule()
{
    m_isSetUp = false;
}

HRESULT CFlickrModule::CanUnload() const noexcept
{
    return ReadLocks() == 0 ? S_OK : S_FALSE;
}

HRESULT CFlickrModule::GetClassObject(REFCLSID clsid, REFIID iid, void **object) noexcept
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (!m_isSetUp)
    {
        return E_UNEXPECTED;
    }
    if (clsid != CLSID_FlickrPublisher)
    {
        return CLASS_E_CLASSNOTAVAILABLE;
    }
    return AtBoundary([&] {
        const std::lock_guard guard(m_lock);
        if (!m_factory)
        {
            m_factory.emplace();
        }
        return m_factory->QueryInterface(iid, object);
    });
}

HRESULT CFlickrModule::Register() noexcept
{
    return RegisterModule(m_scope);
}

HRESULT CFlickrModule::Unregister() noexcept
{
    return UnregisterModule(m_scope);
}

HRESULT CFlickrModule::Install(bool install, const WCHAR *commandLine) noexcept
{
    if (commandLine != nullptr && EqualsIgnoringCase(commandLine, TEXT("user")))
    {
        m_scope = RegistrationScope::User;
    }
    if (!install)
    {
        return Unregister();
    }
    const HRESULT result = Register();
    if (FAILED(result))
    {
        Unregister();
    }
    return result;
}
