// Finding and reading a module's resources. A resource's handle is the address of its entry.
#include "platform/kernel32/ResourceSection.h"

HRSRC WINAPI FindResourceW(HMODULE module, const WCHAR *name, const WCHAR *type)
{
    const auto resources = ResourcesOfModule(module);
    if (resources.empty())
    {
        SetLastError(ERROR_RESOURCE_DATA_NOT_FOUND);
        return nullptr;
    }
    const ResourceMatch match = FindResourceEntry(resources, type, name);
    if (match.entry == nullptr)
    {
        SetLastError(match.typeExists ? ERROR_RESOURCE_NAME_NOT_FOUND : ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
    return reinterpret_cast<HRSRC>(const_cast<BYTE *>(match.entry));
}

HGLOBAL WINAPI LoadResource(HMODULE, HRSRC resource)
{
    if (resource == nullptr)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return const_cast<BYTE *>(ResourceEntryData(reinterpret_cast<const BYTE *>(resource)).data());
}

LPVOID WINAPI LockResource(HGLOBAL loaded)
{
    return loaded;
}

DWORD WINAPI SizeofResource(HMODULE, HRSRC resource)
{
    if (resource == nullptr)
    {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return static_cast<DWORD>(ResourceEntryData(reinterpret_cast<const BYTE *>(resource)).size());
}
