// Opening, making, deleting and listing keys.
#include "platform/advapi32/OpenKeys.h"
#include "platform/advapi32/RegistryDatabase.h"

#include <windows.h>

#include <algorithm>
#include <new>

namespace
{
// No exception may leave a function of the API.
template <class Body>
LSTATUS Guarded(Body &&body) noexcept
{
    try
    {
        return body();
    }
    catch (const std::bad_alloc &)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

LSTATUS Read(const std::function<LSTATUS(const RegistryTree &)> &look)
{
    return RegistryDatabase::Instance().Read(look);
}

LSTATUS Write(const std::function<LSTATUS(RegistryTree &)> &change)
{
    return RegistryDatabase::Instance().Write(change);
}

bool Exists(const KeyPlace &place)
{
    return Read([&](const RegistryTree &tree) {
               return place.Find(tree) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
           }) == ERROR_SUCCESS;
}

// The names of the subkeys in order of their folded form; where two are equal, the user's and not the
// machine's.
std::map<WideText, WideText> SubkeyNames(const KeyPlace &place, const RegistryTree &tree)
{
    std::map<WideText, WideText> names;
    for (const RegistryKey *key : place.FindAll(tree))
    {
        for (const auto &[folded, child] : key->children)
        {
            names.emplace(folded, child->name);
        }
    }
    return names;
}

LSTATUS DeleteKey(HKEY key, LPCWSTR subkey, bool withSubkeys)
{
    KeyPlace place({});
    LSTATUS result = LocateKey(key, subkey, 0, place);
    if (result != ERROR_SUCCESS)
    {
        return result;
    }
    if (!Exists(place))
    {
        return ERROR_FILE_NOT_FOUND;
    }
    return Write([&](RegistryTree &tree) -> LSTATUS {
        const RegistryKey *found = place.Find(tree);
        if (found == nullptr)
        {
            return ERROR_FILE_NOT_FOUND;
        }
        if (!withSubkeys && !found->children.empty())
        {
            return ERROR_ACCESS_DENIED;
        }
        tree.Delete(WideText(place.Path(tree)));
        return ERROR_SUCCESS;
    });
}
} // namespace

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subkey, DWORD, REGSAM access, PHKEY opened)
{
    if (opened == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *opened = nullptr;
    return Guarded([&]() -> LSTATUS {
        KeyPlace place({});
        const LSTATUS result = LocateKey(key, subkey, 0, place);
        if (result != ERROR_SUCCESS)
        {
            return result;
        }
        if (!Exists(place))
        {
            return ERROR_FILE_NOT_FOUND;
        }
        *opened = OpenHandle(std::move(place), access);
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subkey, DWORD reserved, LPWSTR, DWORD, REGSAM access,
                               LPSECURITY_ATTRIBUTES, PHKEY opened, LPDWORD disposition)
{
    if (opened == nullptr || subkey == nullptr || reserved != 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *opened = nullptr;
    return Guarded([&]() -> LSTATUS {
        KeyPlace place({});
        LSTATUS result = LocateKey(key, subkey, 0, place);
        if (result != ERROR_SUCCESS)
        {
            return result;
        }
        DWORD found = REG_OPENED_EXISTING_KEY;
        if (!Exists(place))
        {
            found = REG_CREATED_NEW_KEY;
            result = LocateKey(key, subkey, KEY_CREATE_SUB_KEY, place);
            result = result != ERROR_SUCCESS ? result : Write([&](RegistryTree &tree) {
                tree.Make(WideText(place.Path(tree)));
                return ERROR_SUCCESS;
            });
            if (result != ERROR_SUCCESS)
            {
                return result;
            }
        }
        *opened = OpenHandle(std::move(place), access);
        if (disposition != nullptr)
        {
            *disposition = found;
        }
        return ERROR_SUCCESS;
    });
}

LSTATUS WINAPI RegOpenCurrentUser(REGSAM access, PHKEY opened)
{
    return RegOpenKeyExW(HKEY_CURRENT_USER, nullptr, 0, access, opened);
}

LSTATUS WINAPI RegOverridePredefKey(HKEY key, HKEY target)
{
    return Guarded([&] { return MapPredefinedKey(key, target); });
}

LSTATUS WINAPI RegCloseKey(HKEY key)
{
    return CloseHandleOf(key);
}

LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subkey)
{
    if (subkey == nullptr || *subkey == 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&] { return DeleteKey(key, subkey, false); });
}

// Without a subkey the content of the key is deleted, and the key itself stays.
LSTATUS WINAPI RegDeleteTreeW(HKEY key, LPCWSTR subkey)
{
    return Guarded([&]() -> LSTATUS {
        if (subkey != nullptr && *subkey != 0)
        {
            return DeleteKey(key, subkey, true);
        }
        KeyPlace place({});
        const LSTATUS result = LocateKey(key, nullptr, KEY_SET_VALUE, place);
        return result != ERROR_SUCCESS ? result : Write([&](RegistryTree &tree) -> LSTATUS {
            RegistryKey *found = place.Find(tree);
            if (found == nullptr)
            {
                return ERROR_KEY_DELETED;
            }
            found->children.clear();
            std::erase_if(found->lines, [](const RegistryLine &line) { return line.isValue; });
            found->position = found->position ? found->position : ++tree.lastPosition;
            return ERROR_SUCCESS;
        });
    });
}

LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD length, LPDWORD, LPWSTR keyClass,
                             LPDWORD classLength, PFILETIME lastChange)
{
    if (name == nullptr || length == nullptr || (keyClass != nullptr && classLength == nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return Guarded([&]() -> LSTATUS {
        KeyPlace place({});
        const LSTATUS located = LocateKey(key, nullptr, KEY_ENUMERATE_SUB_KEYS, place);
        const LSTATUS result = located != ERROR_SUCCESS ? located : Read([&](const RegistryTree &tree) -> LSTATUS {
            if (place.Find(tree) == nullptr)
            {
                return ERROR_KEY_DELETED;
            }
            const auto names = SubkeyNames(place, tree);
            if (index >= names.size())
            {
                return ERROR_NO_MORE_ITEMS;
            }
            const WideText &found = std::next(names.begin(), index)->second;
            if (*length <= found.size())
            {
                return ERROR_MORE_DATA;
            }
            found.copy(name, found.size());
            name[found.size()] = 0;
            *length = static_cast<DWORD>(found.size());
            return ERROR_SUCCESS;
        });
        if (result == ERROR_SUCCESS && classLength != nullptr)
        {
            if (keyClass != nullptr && *classLength != 0)
            {
                *keyClass = 0;
            }
            *classLength = 0;
        }
        if (result == ERROR_SUCCESS && lastChange != nullptr)
        {
            *lastChange = RegistryDatabase::Instance().LastChange();
        }
        return result;
    });
}

LSTATUS WINAPI RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classLength, LPDWORD, LPDWORD subkeys,
                                LPDWORD longestSubkey, LPDWORD longestClass, LPDWORD values, LPDWORD longestName,
                                LPDWORD longestData, LPDWORD security, PFILETIME lastChange)
{
    return Guarded([&]() -> LSTATUS {
        KeyPlace place({});
        const LSTATUS located = LocateKey(key, nullptr, KEY_QUERY_VALUE, place);
        size_t keyCount = 0, keyLength = 0, valueCount = 0, nameLength = 0, dataSize = 0;
        const LSTATUS result = located != ERROR_SUCCESS ? located : Read([&](const RegistryTree &tree) -> LSTATUS {
            const RegistryKey *found = place.Find(tree);
            if (found == nullptr)
            {
                return ERROR_KEY_DELETED;
            }
            const auto names = SubkeyNames(place, tree);
            keyCount = names.size();
            for (const auto &[folded, name] : names)
            {
                keyLength = std::max(keyLength, name.size());
            }
            valueCount = found->CountValues();
            for (const RegistryLine &line : found->lines)
            {
                nameLength = std::max(nameLength, line.isValue ? line.name.size() : 0);
                dataSize = std::max(dataSize, line.data.size());
            }
            return ERROR_SUCCESS;
        });
        if (result != ERROR_SUCCESS)
        {
            return result;
        }
        const auto answer = [](LPDWORD out, size_t value) {
            if (out != nullptr)
            {
                *out = static_cast<DWORD>(value);
            }
        };
        if (keyClass != nullptr && classLength != nullptr && *classLength != 0)
        {
            *keyClass = 0;
        }
        answer(classLength, 0);
        answer(subkeys, keyCount);
        answer(longestSubkey, keyLength);
        answer(longestClass, 0);
        answer(values, valueCount);
        answer(longestName, nameLength);
        answer(longestData, dataSize);
        answer(security, 0);
        if (lastChange != nullptr)
        {
            *lastChange = RegistryDatabase::Instance().LastChange();
        }
        return ERROR_SUCCESS;
    });
}
