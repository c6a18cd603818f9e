#include "plugin/ModuleRegistration.h"

#include "core/HandleOwner.h"
#include "core/Hresult.h"
#include "core/ThisModule.h"

namespace
{
#define CLASS_ID TEXT("{46519402-3380-4D48-BC76-63FFAA27165C}")
#define CLASS_KEY TEXT("CLSID\\") CLASS_ID
#define PROG_ID TEXT("Halvora.Publishing.Plugin.Flickr")
#define VERSIONED_PROG_ID PROG_ID TEXT(".1")
#define DESCRIPTION TEXT("Halvora Publish to Flickr Class")

// A value of null stands for the path of this module.
struct ClassEntry
{
    const WCHAR *key;
    const WCHAR *name;      // null: the key's default value
    const WCHAR *value;
};
constexpr ClassEntry classEntries[] = {
    {VERSIONED_PROG_ID, nullptr, DESCRIPTION},
    {VERSIONED_PROG_ID TEXT("\\CLSID"), nullptr, CLASS_ID},
    {PROG_ID, nullptr, DESCRIPTION},
    {PROG_ID TEXT("\\CLSID"), nullptr, CLASS_ID},
    {PROG_ID TEXT("\\CurVer"), nullptr, VERSIONED_PROG_ID},
    {CLASS_KEY, nullptr, DESCRIPTION},
    {CLASS_KEY TEXT("\\ProgID"), nullptr, VERSIONED_PROG_ID},
    {CLASS_KEY TEXT("\\VersionIndependentProgID"), nullptr, PROG_ID},
    {CLASS_KEY TEXT("\\Programmable"), nullptr, TEXT("")},
    {CLASS_KEY TEXT("\\InprocServer32"), nullptr, nullptr},
    {CLASS_KEY TEXT("\\InprocServer32"), TEXT("ThreadingModel"), TEXT("Both")},
    {CLASS_KEY TEXT("\\TypeLib"), nullptr, TEXT("{20FB81F4-2558-4961-B33E-75C9A90642E9}")},
    {CLASS_KEY TEXT("\\Implemented Categories\\{5EE4545B-143B-4f11-B9B3-F919653EB62F}"), nullptr, TEXT("")},
};
constexpr const WCHAR *classKeys[] = {VERSIONED_PROG_ID, PROG_ID, CLASS_KEY};

void ThrowIfError(LSTATUS status)
{
    ThrowIfFailed(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

// Where the classes of a scope lie; prefix is put in front of every path.
struct Classes
{
    HKEY root;
    const WCHAR *prefix;
};

Classes ClassesOf(RegistrationScope scope) noexcept
{
    return scope == RegistrationScope::User ? Classes{HKEY_CURRENT_USER, TEXT("Software\\Classes\\")}
                                            : Classes{HKEY_CLASSES_ROOT, TEXT("")};
}

RegistryKeyOwner CreateKey(const Classes &classes, const WCHAR *name)
{
    const WideText path = WideText(classes.prefix) + name;
    RegistryKeyOwner key;
    ThrowIfError(RegCreateKeyExW(classes.root, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                 KEY_READ | KEY_WRITE, nullptr, key.Put(), nullptr));
    return key;
}

void RemoveTree(const Classes &classes, const WCHAR *name)
{
    const WideText path = WideText(classes.prefix) + name;
    const LSTATUS status = RegDeleteTreeW(classes.root, path.c_str());
    if (status != ERROR_FILE_NOT_FOUND)
    {
        ThrowIfError(status);
    }
}
} // namespace

HRESULT RegisterClassEntries(RegistrationScope scope) noexcept
{
    return AtBoundary([&] {
        const WideText module = ThisModulePath();
        const Classes classes = ClassesOf(scope);
        RemoveTree(classes, CLASS_KEY);
        for (const ClassEntry &entry : classEntries)
        {
            const WideView value = entry.value ? WideView(entry.value) : WideView(module);
            const RegistryKeyOwner key = CreateKey(classes, entry.key);
            ThrowIfError(RegSetValueExW(key.Get(), entry.name, 0, REG_SZ,
                                        reinterpret_cast<const BYTE *>(value.data()),
                                        static_cast<DWORD>((value.size() + 1) * sizeof(WCHAR))));
        }
        return S_OK;
    });
}

HRESULT UnregisterClassEntries(RegistrationScope scope) noexcept
{
    return AtBoundary([&] {
        const Classes classes = ClassesOf(scope);
        for (const WCHAR *key : classKeys)
        {
            RemoveTree(classes, key);
        }
        return S_OK;
    });
}
