// Exports of the module: one class, the imaging factory.
#include <initguid.h>

#include "com/ClassFactory.h"
#include "platform/windowscodecs/ImagingFactory.h"

namespace
{
ClassFactory<CImagingFactory> imagingFactories;
} // namespace

extern "C"
{
    DECLSPEC_EXPORT HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void **object)
    {
        if (object == nullptr)
        {
            return E_INVALIDARG;
        }
        *object = nullptr;
        return clsid == CLSID_WICImagingFactory ? imagingFactories.QueryInterface(iid, object)
                                                : CLASS_E_CLASSNOTAVAILABLE;
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllCanUnloadNow()
    {
        return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
    }
}
