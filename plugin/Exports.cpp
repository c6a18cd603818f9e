// The five functions that the module exports.

#include "core/ThisModule.h"
#include "plugin/FlickrModule.h"

#include <windows.h>
#include <objbase.h>
#include <olectl.h>

namespace
{
CFlickrModule flickrModule(ThisModule());
} // namespace

STDAPI DllCanUnloadNow()
{
    return flickrModule.CanUnload();
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID *object)
{
    return flickrModule.GetClassObject(clsid, iid, object);
}

STDAPI DllInstall(BOOL install, LPCWSTR commandLine)
{
    return flickrModule.Install(install != FALSE, commandLine);
}

STDAPI DllRegisterServer()
{
    return flickrModule.Register();
}

STDAPI DllUnregisterServer()
{
    return flickrModule.Unregister();
}
