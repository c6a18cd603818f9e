// Exports of the module: the classes DOMDocument of MSXML 6 and of MSXML without a version, and MSXML 6's
// request for servers.
#include <initguid.h>

#include "com/ModuleLocks.h"
#include "platform/msxml/NodeObjects.h"

#include "XmlInterfaces.h"

DEFINE_GUID(CLSID_DOMDocumentOfNoVersion, 0x2933bf90, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e,
            0x60);

IClassFactory *ServerRequestFactory();

namespace
{
struct ClassEntry
{
    const GUID &clsid;
    IClassFactory *(*factory)();
};

const ClassEntry Classes[] = {
    {CLSID_DOMDocument60, DocumentFactory},
    {CLSID_DOMDocumentOfNoVersion, DocumentFactory},
    {CLSID_ServerXMLHTTP60, ServerRequestFactory},
};
} // namespace

extern "C" DECLSPEC_EXPORT HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID *object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    for (const ClassEntry &entry : Classes)
    {
        if (entry.clsid == clsid)
        {
            return entry.factory()->QueryInterface(iid, object);
        }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" DECLSPEC_EXPORT HRESULT WINAPI DllCanUnloadNow()
{
    return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
}
