#include "plugin/RegistryScripts_win32.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "core/ThisModule.h"

#include "RegistrarInterface.h"

#include <objbase.h>

#include <optional>

namespace
{
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
} // namespace

HRESULT ApplyRegistryScript(UINT id, RegistrationScope scope) noexcept
{
    return RunScript(id, scope, &IRegistrar::ResourceRegister);
}

HRESULT RevertRegistryScript(UINT id, RegistrationScope scope) noexcept
{
    return RunScript(id, scope, &IRegistrar::ResourceUnregister);
}
