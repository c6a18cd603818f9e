#include "plugin/TypeLibraryRegistration_win32.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "core/ThisModule.h"

#include "HVRPublishToFlickr.h"

#include <oleauto.h>

namespace
{
// As the type library's source has them.
constexpr WORD MajorVersion = 1;
constexpr WORD MinorVersion = 0;
constexpr LCID LibraryLocale = 0x409;
constexpr const WCHAR *LibraryKey = TEXT("TypeLib\\{20FB81F4-2558-4961-B33E-75C9A90642E9}\\1.0\\409");

using Register = HRESULT WINAPI(ITypeLib *library, LPOLESTR path, LPOLESTR helpFolder);
using Unregister = HRESULT WINAPI(REFGUID id, WORD major, WORD minor, LCID locale, SYSKIND system);

// Looked up at run time: not every import library has the functions for one user.
template <class Function>
Function *AutomationFunction(const char *name)
{
    const HMODULE automation = GetModuleHandleW(TEXT("OLEAUT32.DLL"));
    const FARPROC function = automation ? GetProcAddress(automation, name) : nullptr;
    if (function == nullptr)
    {
        ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
    }
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(function));
}

bool IsRegistered(RegistrationScope scope)
{
    const bool isUser = scope == RegistrationScope::User;
    const WideText path = (isUser ? TEXT("Software\\Classes\\") : TEXT("")) + WideText(LibraryKey);
    RegistryKeyOwner key;
    return RegOpenKeyExW(isUser ? HKEY_CURRENT_USER : HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, key.Put()) !=
           ERROR_FILE_NOT_FOUND;
}
} // namespace

HRESULT RegisterTypeLibrary(RegistrationScope scope) noexcept
{
    return AtBoundary([&] {
        WideText path = ThisModulePath();
        WideText folder = path.substr(0, path.find_last_of(TEXT("\\/")));
        ComPtr<ITypeLib> library;
        ThrowIfFailed(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Put()));
        return scope == RegistrationScope::User ? AutomationFunction<Register>("RegisterTypeLibForUser")(
                                                      library.Get(), path.data(), folder.data())
                                                : RegisterTypeLib(library.Get(), path.data(), folder.data());
    });
}

HRESULT UnregisterTypeLibrary(RegistrationScope scope) noexcept
{
    return AtBoundary([&] {
        const bool wasRegistered = IsRegistered(scope);
        const HRESULT result =
            scope == RegistrationScope::User
                ? AutomationFunction<Unregister>("UnRegisterTypeLibForUser")(
                      LIBID_HVRPublishToFlickrLib, MajorVersion, MinorVersion, LibraryLocale, SYS_WIN64)
                : UnRegisterTypeLib(LIBID_HVRPublishToFlickrLib, MajorVersion, MinorVersion, LibraryLocale,
                                    SYS_WIN64);
        // The system fails to remove a library that isn't registered; for us that is a success.
        return wasRegistered ? result : S_OK;
    });
}
