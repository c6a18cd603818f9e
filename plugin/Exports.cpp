// The five functions that the module exports.

#include "core/ClassFactory.h"
#include "core/TextPieces.h"
#include "plugin/FlickrPublisher.h"
#include "plugin/ModuleRegistration.h"

#include <windows.h>
#include <objbase.h>
#include <olectl.h>

namespace
{
// Kept for as long as the module is loaded; only references from outside lock the module.
ClassFactory<CFlickrPublisher> &Factory()
{
    static ClassFactory<CFlickrPublisher> factory;
    return factory;
}

// Set by DllInstall for the rest of the process.
RegistrationScope scope = RegistrationScope::Machine;
} // namespace

STDAPI DllCanUnloadNow()
{
    return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID *object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    return clsid == CLSID_FlickrPublisher ? Factory().QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllRegisterServer()
{
    return RegisterClassEntries(scope);
}

STDAPI DllUnregisterServer()
{
    return UnregisterClassEntries(scope);
}

STDAPI DllInstall(BOOL install, LPCWSTR commandLine)
{
    if (commandLine != nullptr && EqualsIgnoringCase(commandLine, TEXT("user")))
    {
        scope = RegistrationScope::User;
    }
    if (!install)
    {
        return DllUnregisterServer();
    }
    const HRESULT result = DllRegisterServer();
    if (FAILED(result))
    {
        DllUnregisterServer();
    }
    return result;
}
