// Exports of the module, and its entry in the registry: one class, the imaging factory.
#include <initguid.h>

#include "com/ClassFactory.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/WideText.h"
#include "platform/windowscodecs/ImagingFactory.h"

#include <olectl.h>

namespace
{
ClassFactory<CImagingFactory> imagingFactories;

WideText ClassKey()
{
    WCHAR text[40];
    StringFromGUID2(CLSID_WICImagingFactory, text, ARRAYSIZE(text));
    return TEXT("CLSID\\") + WideText(text);
}

WideText ModulePath()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const WCHAR *>(&ModulePath), &module);
    WideText path(0x8000, 0);
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

void WriteText(const WideText &key, const WCHAR *name, const WideText &text)
{
    RegistryKeyOwner opened;
    ThrowIfFailed(HRESULT_FROM_WIN32(RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE,
                                                     nullptr, opened.Put(), nullptr)));
    ThrowIfFailed(HRESULT_FROM_WIN32(RegSetValueExW(opened.Get(), name, 0, REG_SZ,
                                                    reinterpret_cast<const BYTE *>(text.c_str()),
                                                    static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)))));
}
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

    DECLSPEC_EXPORT HRESULT WINAPI DllRegisterServer()
    {
        return AtBoundary([] {
            const WideText server = ClassKey() + TEXT("\\InprocServer32");
            WriteText(ClassKey(), nullptr, TEXT("WIC Imaging Factory"));
            WriteText(server, nullptr, ModulePath());
            WriteText(server, TEXT("ThreadingModel"), TEXT("Both"));
            return S_OK;
        });
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllUnregisterServer()
    {
        return AtBoundary([] {
            const LSTATUS status = RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassKey().c_str());
            return status == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(status);
        });
    }
}
