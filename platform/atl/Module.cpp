// Exports of the module, and its entry in the registry: one class, the registrar. It writes that entry by a
// script of its own.
#include <initguid.h>

#include "com/ComPtr.h"
#include "com/Hresult.h"
#include "com/ModuleLocks.h"
#include "com/WideText.h"
#include "platform/atl/Registrar.h"

#include "RegistrarInterface.h"

#include <olectl.h>

namespace
{
constexpr const WCHAR *OwnScript =
    TEXT("HKCR { NoRemove CLSID {"
         " ForceRemove {44EC053A-400F-11D0-9DCD-00A0C90391D3} = s 'Registrar Class' {"
         "  ProgID = s 'ATL.Registrar'"
         "  InprocServer32 = s '%MODULE%' { val ThreadingModel = s 'Both' } } }"
         " ATL.Registrar = s 'Registrar Class' {"
         "  CLSID = s '{44EC053A-400F-11D0-9DCD-00A0C90391D3}' } }");

// The path as it is written between single quotes in a script.
WideText QuotedModulePath()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const WCHAR *>(&QuotedModulePath), &module);
    WideText path(0x8000, 0);
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    for (size_t at = path.find('\''); at != WideText::npos; at = path.find('\'', at + 2))
    {
        path.insert(at, 1, '\'');
    }
    return path;
}

HRESULT RunOwnScript(HRESULT (STDMETHODCALLTYPE IRegistrar::*operation)(LPCOLESTR script))
{
    return AtBoundary([&] {
        ComPtr<IRegistrar> registrar;
        ThrowIfFailed(RegistrarFactory()->CreateInstance(nullptr, __uuidof(IRegistrar), registrar.PutVoid()));
        ThrowIfFailed(registrar->AddReplacement(TEXT("MODULE"), QuotedModulePath().c_str()));
        return (registrar.Get()->*operation)(OwnScript);
    });
}
} // namespace

extern "C"
{
    DECLSPEC_EXPORT HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void **object)
    {
        if (object == nullptr)
        {
            return E_POINTER;
        }
        *object = nullptr;
        return clsid == CLSID_Registrar ? RegistrarFactory()->QueryInterface(iid, object)
                                        : CLASS_E_CLASSNOTAVAILABLE;
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllCanUnloadNow()
    {
        return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllRegisterServer()
    {
        return RunOwnScript(&IRegistrar::StringRegister);
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllUnregisterServer()
    {
        return RunOwnScript(&IRegistrar::StringUnregister);
    }
}
