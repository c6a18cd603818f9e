#include "plugin/ModuleRegistration.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "core/ThisModule.h"
#include "resources/resource.h"

#include "HVRPublishToFlickr.h"
#include "RegistrarInterface.h"

#include <objbase.h>
#include <oleauto.h>

#include <optional>

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

constexpr const WCHAR *ApplicationId = TEXT("{BFB39C79-DF27-42C0-8377-1B8ADA033E84}");

void ThrowIfError(LSTATUS status)
{
    ThrowIfFailed(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

// While this lives, HKEY_CLASSES_ROOT means the user's own classes in this process.
class UserClassesMapping
{
public:
    UserClassesMapping()
    {
        // RegOverridePredefKey wants a key that was opened: a mapping to HKEY_CURRENT_USER itself has no effect,
        // and the script would write for the machine.
        RegistryKeyOwner user;
        ThrowIfError(RegOpenCurrentUser(KEY_READ | KEY_WRITE, user.Put()));
        RegistryKeyOwner classes;
        ThrowIfError(RegCreateKeyExW(user.Get(), TEXT("Software\\Classes"), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_READ | KEY_WRITE, nullptr, classes.Put(), nullptr));
        ThrowIfError(RegOverridePredefKey(HKEY_CLASSES_ROOT, classes.Get()));
    }
    ~UserClassesMapping() { RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr); }
    UserClassesMapping(const UserClassesMapping &) = delete;
    UserClassesMapping &operator=(const UserClassesMapping &) = delete;
};

// The scripts put the path between single quotes, so a quote in the path must be doubled.
WideText QuotedPath(const WideText &path)
{
    WideText quoted;
    for (const WCHAR unit : path)
    {
        quoted.append(unit == '\'' ? 2 : 1, unit);
    }
    return quoted;
}

using Operation = HRESULT (STDMETHODCALLTYPE IRegistrar::*)(LPCOLESTR file, UINT id, LPCOLESTR type);

HRESULT RunScript(UINT id, RegistrationScope scope, Operation operation) noexcept
{
    return AtBoundary([&] {
        const WideText module = ThisModulePath();
        // Created before the mapping, while COM still finds the registrar among the machine's classes.
        ComPtr<IRegistrar> registrar;
        ThrowIfFailed(CoCreateInstance(CLSID_Registrar, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IRegistrar),
                                       registrar.PutVoid()));
        ThrowIfFailed(registrar->AddReplacement(TEXT("APPID"), ApplicationId));
        ThrowIfFailed(registrar->AddReplacement(TEXT("MODULE"), QuotedPath(module).c_str()));
        std::optional<UserClassesMapping> mapping;
        if (scope == RegistrationScope::User)
        {
            mapping.emplace();
        }
        return (registrar.Get()->*operation)(module.c_str(), id, TEXT("REGISTRY"));
    });
}

// Writes the entries of the script, the resource id of type REGISTRY. In the script %APPID% stands for the
// application's identifier and %MODULE% for this module's path.
HRESULT ApplyRegistryScript(UINT id, RegistrationScope scope) noexcept
{
    return RunScript(id, scope, &IRegistrar::ResourceRegister);
}

// Removes the entries that the script writes.
HRESULT RevertRegistryScript(UINT id, RegistrationScope scope) noexcept
{
    return RunScript(id, scope, &IRegistrar::ResourceUnregister);
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
