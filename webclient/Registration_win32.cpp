// The entries in the registry by which COM finds the module's classes.
#include "com/Hresult.h"
#include "com/WideText.h"
#include "core/TextPieces.h"
#include "core/ThisModule.h"
#include "webclient/ComponentClasses.h"

namespace
{
WideText ClassKeyPath(const CLSID &clsid)
{
    WCHAR text[40] = {};
    if (StringFromGUID2(clsid, text, 40) == 0)
    {
        ThrowHresult(E_UNEXPECTED);
    }
    return WideText(TEXT("Software\\Classes\\CLSID\\")) + text;
}

// Creates the key if there is none.
void SetText(HKEY scope, const WideText &path, const WCHAR *name, const WideText &text)
{
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
    ThrowIfFailed(HRESULT_FROM_WIN32(RegSetKeyValueW(scope, path.c_str(), name, REG_SZ, text.c_str(), size)));
}

// Where classes are registered. Not HKEY_CLASSES_ROOT, the merged view of both: it writes to the user's
// part where a key exists there already.
const HKEY Machine = HKEY_LOCAL_MACHINE;
const HKEY User = HKEY_CURRENT_USER;

void Register(const ComponentClass &component, HKEY scope, const WideText &modulePath)
{
    const WideText path = ClassKeyPath(component.clsid);
    const WideText server = path + TEXT("\\InprocServer32");
    SetText(scope, path, nullptr, component.name);
    SetText(scope, server, nullptr, modulePath);
    SetText(scope, server, TEXT("ThreadingModel"), TEXT("Both"));
}

// A key that doesn't exist counts as deleted.
HRESULT Delete(HKEY scope, const WideText &path)
{
    const LSTATUS status = RegDeleteTreeW(scope, path.c_str());
    return status == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(status);
}

HRESULT Unregister(HKEY scope) noexcept
{
    return AtBoundary([&] {
        HRESULT result = S_OK;
        for (const ComponentClass &component : ComponentClasses())
        {
            const HRESULT deleted = Delete(scope, ClassKeyPath(component.clsid));
            result = FAILED(result) ? result : deleted;
        }
        return result;
    });
}

HRESULT Register(HKEY scope) noexcept
{
    const HRESULT result = AtBoundary([&] {
        const WideText path = ThisModulePath();
        if (path.empty())
        {
            return E_UNEXPECTED;
        }
        for (const ComponentClass &component : ComponentClasses())
        {
            Register(component, scope, path);
        }
        return S_OK;
    });
    if (FAILED(result))
    {
        Unregister(scope); // all or nothing
    }
    return result;
}
} // namespace

// "user", in whatever case, is for the current user alone; anything else for the machine.
STDAPI DllInstall(BOOL install, LPCWSTR commandLine)
{
    const HKEY scope = commandLine != nullptr && EqualsIgnoringCase(commandLine, TEXT("user")) ? User : Machine;
    return install ? Register(scope) : Unregister(scope);
}

STDAPI DllRegisterServer()
{
    return Register(Machine);
}

STDAPI DllUnregisterServer()
{
    return Unregister(Machine);
}
