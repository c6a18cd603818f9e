#include "plugin/ModuleRegistration.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "core/ThisModule.h"
#include "plugin/RegistryScripts_win32.h"
#include "resources/resource.h"

#include "HVRPublishToFlickr.h"

#include <oleauto.h>

namespace
{
// Sets the thread's locale for the length of a registration, so that the texts that it writes into the
// registry don't depend on the language of the user who installs.
class SystemLocale
{
public:
    SystemLocale() noexcept : m_saved(GetThreadLocale()) { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }
    ~SystemLocale() { SetThreadLocale(m_saved); }
    SystemLocale(const SystemLocale &) = delete;
    SystemLocale &operator=(const SystemLocale &) = delete;

private:
    LCID m_saved;
};

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

// Needs no readable type library. Entries that aren't there are no failure.
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
} // namespace

HRESULT RegisterModule(RegistrationScope scope) noexcept
{
    const SystemLocale locale;
    return AtBoundary([&] {
        ThrowIfFailed(ApplyRegistryScript(IDR_APPLICATION_ENTRIES, scope));
        ThrowIfFailed(ApplyRegistryScript(IDR_CLASS_ENTRIES, scope));
        return RegisterTypeLibrary(scope);
    });
}

HRESULT UnregisterModule(RegistrationScope scope) noexcept
{
    const SystemLocale locale;
    HRESULT first = S_OK;
    for (const HRESULT result : {RevertRegistryScript(IDR_CLASS_ENTRIES, scope), UnregisterTypeLibrary(scope),
                                 RevertRegistryScript(IDR_APPLICATION_ENTRIES, scope)})
    {
        first = FAILED(first) ? first : result;
    }
    return FAILED(first) ? first : S_OK;
}
