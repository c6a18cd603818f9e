// Exports of the module: the classes DOMDocument of MSXML 6 and of MSXML without a version, and the
// request classes of MSXML 6.
#include <initguid.h>

#include "com/HandleOwner.h"
#include "com/ModuleLocks.h"
#include "com/WideText.h"
#include "platform/kernel32/PathText.h"

#include "XmlInterfaces.h"

#include <dlfcn.h>

DEFINE_GUID(CLSID_DOMDocumentOfNoVersion, 0x2933bf90, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e,
            0x60);

IClassFactory *DocumentFactory();
IClassFactory *UserRequestFactory();
IClassFactory *ServerRequestFactory();

namespace
{
struct ClassEntry
{
    const GUID &clsid;
    const WCHAR *progId;
    const WCHAR *name;
    IClassFactory *(*factory)();
};

const ClassEntry Classes[] = {
    {CLSID_DOMDocument60, TEXT("Msxml2.DOMDocument.6.0"), TEXT("XML DOM Document"), DocumentFactory},
    {CLSID_DOMDocumentOfNoVersion, TEXT("Msxml2.DOMDocument"), TEXT("XML DOM Document"), DocumentFactory},
    {CLSID_XMLHTTP60, TEXT("Msxml2.XMLHTTP.6.0"), TEXT("XML HTTP Request"), UserRequestFactory},
    {CLSID_ServerXMLHTTP60, TEXT("Msxml2.ServerXMLHTTP.6.0"), TEXT("Server XML HTTP Request"),
     ServerRequestFactory},
};

WideText GuidText(REFGUID guid)
{
    WCHAR text[40];
    StringFromGUID2(guid, text, 40);
    return text;
}

LSTATUS SetEntry(const WideText &path, const WCHAR *name, const WideText &text)
{
    RegistryKeyOwner key;
    const LSTATUS opened =
        RegCreateKeyExW(HKEY_CLASSES_ROOT, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.Put(), nullptr);
    return opened != ERROR_SUCCESS
               ? opened
               : RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                                static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
}

WideText ModulePath()
{
    Dl_info info{};
    return dladdr(reinterpret_cast<const void *>(&DocumentFactory), &info) && info.dli_fname
               ? PathFromBytes(info.dli_fname)
               : WideText();
}
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

extern "C" DECLSPEC_EXPORT HRESULT WINAPI DllRegisterServer()
{
    const WideText module = ModulePath();
    for (const ClassEntry &entry : Classes)
    {
        const WideText path = TEXT("CLSID\\") + GuidText(entry.clsid);
        const struct
        {
            WideText path;
            const WCHAR *name;
            WideText text;
        } values[] = {
            {path, nullptr, entry.name},
            {path + TEXT("\\InprocServer32"), nullptr, module},
            {path + TEXT("\\InprocServer32"), TEXT("ThreadingModel"), TEXT("Both")},
            {path + TEXT("\\ProgID"), nullptr, entry.progId},
            {WideText(entry.progId) + TEXT("\\CLSID"), nullptr, GuidText(entry.clsid)},
        };
        for (const auto &value : values)
        {
            if (const LSTATUS status = SetEntry(value.path, value.name, value.text); status != ERROR_SUCCESS)
            {
                return HRESULT_FROM_WIN32(status);
            }
        }
    }
    return S_OK;
}

extern "C" DECLSPEC_EXPORT HRESULT WINAPI DllUnregisterServer()
{
    for (const ClassEntry &entry : Classes)
    {
        RegDeleteTreeW(HKEY_CLASSES_ROOT, (TEXT("CLSID\\") + GuidText(entry.clsid)).c_str());
        RegDeleteTreeW(HKEY_CLASSES_ROOT, entry.progId);
    }
    return S_OK;
}
