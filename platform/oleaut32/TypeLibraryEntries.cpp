// The registry entries of type libraries: below TypeLib the library itself, below Interface those of its
// interfaces that the system can marshal by it.
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/WideText.h"

#include <oleauto.h>

#include <functional>
#include <memory>

namespace
{
// The system's marshalers for custom and for dispatch interfaces.
constexpr const WCHAR *InterfaceMarshaler = TEXT("{00020424-0000-0000-C000-000000000046}");
constexpr const WCHAR *DispatchMarshaler = TEXT("{00020420-0000-0000-C000-000000000046}");

struct Classes
{
    HKEY root;
    const WCHAR *prefix;

    WideText Path(const WideText &name) const { return prefix + name; }
};
constexpr const WCHAR *UserPrefix = TEXT("Software\\Classes\\");

Classes MachineClasses()
{
    return {HKEY_CLASSES_ROOT, TEXT("")};
}
Classes UserClasses()
{
    return {HKEY_CURRENT_USER, UserPrefix};
}

WideText GuidText(REFGUID guid)
{
    WCHAR text[40];
    StringFromGUID2(guid, text, ARRAYSIZE(text));
    return text;
}

WideText Hexadecimal(DWORD number)
{
    WideText text;
    do
    {
        text.insert(text.begin(), static_cast<WCHAR>("0123456789abcdef"[number % 16]));
    } while ((number /= 16) != 0);
    return text;
}

WideText VersionText(WORD major, WORD minor)
{
    return Hexadecimal(major) + TEXT(".") + Hexadecimal(minor);
}

const WCHAR *SystemName(SYSKIND system)
{
    return system == SYS_WIN64 ? TEXT("win64") : TEXT("win32");
}

void Write(const Classes &classes, const WideText &path, const WCHAR *name, const WideText &text)
{
    RegistryKeyOwner key;
    LSTATUS status = RegCreateKeyExW(classes.root, classes.Path(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_WRITE, nullptr, key.Put(), nullptr);
    status = status != ERROR_SUCCESS
                 ? status
                 : RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                                  static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
    if (status != ERROR_SUCCESS)
    {
        ThrowHresult(TYPE_E_REGISTRYACCESS);
    }
}

WideText ReadDefault(const Classes &classes, const WideText &path)
{
    RegistryKeyOwner key;
    WCHAR text[4096];
    DWORD size = sizeof(text) - sizeof(WCHAR);
    DWORD type = 0;
    if (RegOpenKeyExW(classes.root, classes.Path(path).c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS ||
        RegQueryValueExW(key.Get(), nullptr, nullptr, &type, reinterpret_cast<BYTE *>(text), &size) !=
            ERROR_SUCCESS ||
        type != REG_SZ)
    {
        return WideText();
    }
    text[size / sizeof(WCHAR)] = 0;
    return text;
}

void Remove(const Classes &classes, const WideText &path)
{
    const LSTATUS status = RegDeleteTreeW(classes.root, classes.Path(path).c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND)
    {
        ThrowHresult(TYPE_E_REGISTRYACCESS);
    }
}

// The keys below path, except the two that every version has.
size_t CountOthers(const Classes &classes, const WideText &path)
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(classes.root, classes.Path(path).c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS)
    {
        return 0;
    }
    size_t count = 0;
    WCHAR name[256];
    for (DWORD i = 0, length = ARRAYSIZE(name);
         RegEnumKeyExW(key.Get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
         ++i, length = ARRAYSIZE(name))
    {
        const WideView found(name, length);
        count += found != TEXT("FLAGS") && found != TEXT("HELPDIR");
    }
    return count;
}

template <class Attributes>
using AttributesOwner = std::unique_ptr<Attributes, std::function<void(Attributes *)>>;

AttributesOwner<TLIBATTR> AttributesOf(ITypeLib *library)
{
    TLIBATTR *attributes = nullptr;
    ThrowIfFailed(library->GetLibAttr(&attributes));
    return {attributes, [library](TLIBATTR *owned) { library->ReleaseTLibAttr(owned); }};
}

WideText HelpText(ITypeLib *library)
{
    BstrOwner help;
    ThrowIfFailed(library->GetDocumentation(-1, nullptr, help.Put(), nullptr, nullptr));
    return WideText(help.View());
}

// Calls body with the attributes and the name of each interface that is marshaled by the library.
void ForEachInterface(ITypeLib *library, const std::function<void(const TYPEATTR &, const WideText &name)> &body)
{
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i)
    {
        ComPtr<ITypeInfo> info;
        TYPEATTR *given = nullptr;
        ThrowIfFailed(library->GetTypeInfo(i, info.Put()));
        ThrowIfFailed(info->GetTypeAttr(&given));
        const AttributesOwner<TYPEATTR> attributes(given, [&](TYPEATTR *owned) { info->ReleaseTypeAttr(owned); });
        const bool isMarshaled =
            attributes->typekind == TKIND_DISPATCH ||
            (attributes->typekind == TKIND_INTERFACE && attributes->wTypeFlags & TYPEFLAG_FOLEAUTOMATION);
        if (isMarshaled)
        {
            BstrOwner name;
            ThrowIfFailed(info->GetDocumentation(MEMBERID_NIL, name.Put(), nullptr, nullptr, nullptr));
            body(*attributes, WideText(name.View()));
        }
    }
}

HRESULT Register(ITypeLib *library, LPCOLESTR path, LPCOLESTR helpFolder, const Classes &classes)
{
    if (library == nullptr || path == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const auto attributes = AttributesOf(library);
        const WideText id = GuidText(attributes->guid);
        const WideText version = VersionText(attributes->wMajorVerNum, attributes->wMinorVerNum);
        const WideText key = TEXT("TypeLib\\") + id + TEXT("\\") + version;
        const WideText file(path);
        const size_t name = file.find_last_of(TEXT("\\/"));
        const WideText folder = file.substr(0, name == WideText::npos ? 0 : name);
        Write(classes, key, nullptr, HelpText(library));
        Write(classes,
              key + TEXT("\\") + Hexadecimal(attributes->lcid) + TEXT("\\") + SystemName(attributes->syskind),
              nullptr, file);
        Write(classes, key + TEXT("\\FLAGS"), nullptr, Hexadecimal(attributes->wLibFlags));
        Write(classes, key + TEXT("\\HELPDIR"), nullptr, helpFolder ? WideText(helpFolder) : folder);
        ForEachInterface(library, [&](const TYPEATTR &type, const WideText &typeName) {
            const WideText entry = TEXT("Interface\\") + GuidText(type.guid);
            const bool isDispatchOnly = type.typekind == TKIND_DISPATCH && !(type.wTypeFlags & TYPEFLAG_FDUAL);
            Write(classes, entry, nullptr, typeName);
            Write(classes, entry + TEXT("\\ProxyStubClsid32"), nullptr,
                  isDispatchOnly ? DispatchMarshaler : InterfaceMarshaler);
            Write(classes, entry + TEXT("\\TypeLib"), nullptr, id);
            Write(classes, entry + TEXT("\\TypeLib"), TEXT("Version"), version);
        });
        return S_OK;
    });
}

// The library itself lists its interfaces; if it can't be read any more, their entries stay.
void RemoveInterfaces(const Classes &classes, const WideText &path, const WideText &id)
{
    ComPtr<ITypeLib> library;
    if (path.empty() || FAILED(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Put())))
    {
        return;
    }
    ForEachInterface(library.Get(), [&](const TYPEATTR &type, const WideText &) {
        const WideText entry = TEXT("Interface\\") + GuidText(type.guid);
        if (ReadDefault(classes, entry + TEXT("\\TypeLib")) == id)
        {
            Remove(classes, entry);
        }
    });
}

HRESULT Unregister(REFGUID guid, WORD major, WORD minor, LCID locale, SYSKIND system, const Classes &classes)
{
    return AtBoundary([&]() -> HRESULT {
        const WideText id = GuidText(guid);
        const WideText library = TEXT("TypeLib\\") + id;
        const WideText version = library + TEXT("\\") + VersionText(major, minor);
        const WideText language = version + TEXT("\\") + Hexadecimal(locale);
        const WideText file = language + TEXT("\\") + SystemName(system);
        const WideText path = ReadDefault(classes, file);
        if (path.empty())
        {
            return TYPE_E_REGISTRYACCESS;
        }
        RemoveInterfaces(classes, path, id);
        Remove(classes, file);
        for (const WideText &emptied : {language, version, library})
        {
            if (CountOthers(classes, emptied) != 0)
            {
                break;
            }
            Remove(classes, emptied);
        }
        return S_OK;
    });
}
} // namespace

HRESULT WINAPI RegisterTypeLib(ITypeLib *library, LPCOLESTR path, LPCOLESTR helpFolder)
{
    return Register(library, path, helpFolder, MachineClasses());
}

HRESULT WINAPI RegisterTypeLibForUser(ITypeLib *library, OLECHAR *path, OLECHAR *helpFolder)
{
    return Register(library, path, helpFolder, UserClasses());
}

HRESULT WINAPI UnRegisterTypeLib(REFGUID id, WORD major, WORD minor, LCID locale, SYSKIND system)
{
    return Unregister(id, major, minor, locale, system, MachineClasses());
}

HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID id, WORD major, WORD minor, LCID locale, SYSKIND system)
{
    return Unregister(id, major, minor, locale, system, UserClasses());
}
