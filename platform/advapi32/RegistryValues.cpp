// Reading, writing, deleting and listing the values of a key.
#include "platform/advapi32/OpenKeys.h"
#include "platform/advapi32/RegistryDatabase.h"

#include <windows.h>

#include <cstring>
#include <new>

namespace
{
// Calls body with the key, if the handle has the rights that are needed.
template <class Body>
LSTATUS ReadKey(HKEY key, REGSAM needed, Body &&body) noexcept
{
    try
    {
        KeyPlace place({});
        const LSTATUS located = LocateKey(key, nullptr, needed, place);
        return located != ERROR_SUCCESS
                   ? located
                   : RegistryDatabase::Instance().Read([&](const RegistryTree &tree) -> LSTATUS {
                         const RegistryKey *found = place.Find(tree);
                         return found ? body(*found) : ERROR_KEY_DELETED;
                     });
    }
    catch (const std::bad_alloc &)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

template <class Body>
LSTATUS WriteKey(HKEY key, Body &&body) noexcept
{
    try
    {
        KeyPlace place({});
        const LSTATUS located = LocateKey(key, nullptr, KEY_SET_VALUE, place);
        return located != ERROR_SUCCESS ? located
                                        : RegistryDatabase::Instance().Write([&](RegistryTree &tree) -> LSTATUS {
                                              RegistryKey *found = place.Find(tree);
                                              return found ? body(*found, tree) : ERROR_KEY_DELETED;
                                          });
    }
    catch (const std::bad_alloc &)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

// Type, data and size as the functions that read a value hand them out. data may be null to ask
// for the size alone.
LSTATUS HandOut(const RegistryLine &value, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (type != nullptr)
    {
        *type = value.type;
    }
    if (size == nullptr)
    {
        return ERROR_SUCCESS;
    }
    const auto needed = static_cast<DWORD>(value.data.size());
    const bool fits = data == nullptr || *size >= needed;
    *size = needed;
    if (!fits)
    {
        return ERROR_MORE_DATA;
    }
    if (data != nullptr && needed != 0)
    {
        std::memcpy(data, value.data.data(), needed);
    }
    return ERROR_SUCCESS;
}

WideView NameOf(LPCWSTR name)
{
    return name ? WideView(name) : WideView();
}
} // namespace

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (reserved != nullptr || (data != nullptr && size == nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return ReadKey(key, KEY_QUERY_VALUE, [&](const RegistryKey &found) -> LSTATUS {
        const RegistryLine *value = found.FindValue(NameOf(name));
        return value ? HandOut(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
    });
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE *data, DWORD size)
{
    if (reserved != 0 || (data == nullptr && size != 0))
    {
        return ERROR_INVALID_PARAMETER;
    }
    // If the value is stored already, the file isn't replaced.
    const LSTATUS same = ReadKey(key, 0, [&](const RegistryKey &found) -> LSTATUS {
        const RegistryLine *value = found.FindValue(NameOf(name));
        const bool equal = value && value->type == type && value->data.size() == size &&
                           (size == 0 || std::memcmp(value->data.data(), data, size) == 0);
        return equal ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
    KeyPlace place({});
    if (same == ERROR_SUCCESS)
    {
        return LocateKey(key, nullptr, KEY_SET_VALUE, place);
    }
    return WriteKey(key, [&](RegistryKey &found, RegistryTree &tree) {
        found.SetValue(NameOf(name), type, size ? std::vector<BYTE>(data, data + size) : std::vector<BYTE>());
        found.position = found.position ? found.position : ++tree.lastPosition;
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name)
{
    return WriteKey(key, [&](RegistryKey &found, RegistryTree &tree) -> LSTATUS {
        found.position = found.position ? found.position : ++tree.lastPosition;
        return found.DeleteValue(NameOf(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
    });
}

LSTATUS WINAPI RegEnumValueW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameLength, LPDWORD reserved,
                             LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (name == nullptr || nameLength == nullptr || reserved != nullptr || (data != nullptr && size == nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return ReadKey(key, KEY_QUERY_VALUE, [&](const RegistryKey &found) -> LSTATUS {
        for (const RegistryLine &line : found.lines)
        {
            if (!line.isValue || index-- != 0)
            {
                continue;
            }
            if (*nameLength <= line.name.size())
            {
                return ERROR_MORE_DATA;
            }
            line.name.copy(name, line.name.size());
            name[line.name.size()] = 0;
            *nameLength = static_cast<DWORD>(line.name.size());
            return HandOut(line, type, data, size);
        }
        return ERROR_NO_MORE_ITEMS;
    });
}
