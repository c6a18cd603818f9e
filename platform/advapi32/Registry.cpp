// Keys and values. Which rights a key was opened with isn't looked at.
#include "com/WideText.h"
#include "platform/advapi32/RegistryDatabase.h"

#include <windows.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace
{
std::mutex tableLock;

// The paths of open keys.
std::map<HKEY, WideText> &Table()
{
    static auto *table = new std::map<HKEY, WideText>;
    return *table;
}

HKEY OpenHandle(const WideText &path)
{
    const std::lock_guard guard(tableLock);
    static ULONG_PTR last = 0x100;
    // A value is never used again, so that a closed handle is recognised.
    const auto key = reinterpret_cast<HKEY>(last += 4);
    Table().emplace(key, path);
    return key;
}

// Appends the names of subkey; several backslashes in a row, or at the end, count as one or none.
void Append(WideText &path, WideView subkey)
{
    while (!subkey.empty())
    {
        const size_t end = std::min(subkey.find(u'\\'), subkey.size());
        path.append(path.empty() || end == 0 ? TEXT("") : TEXT("\\")).append(subkey.substr(0, end));
        subkey.remove_prefix(std::min(end + 1, subkey.size()));
    }
}

LSTATUS Exists(const WideText &path)
{
    return RegistryDatabase::Instance().Read(
        [&](const RegistryContent &content) { return content.Has(path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND; });
}

// Sets path, below HKEY_CURRENT_USER, for a key and a subkey of it (may be null). ERROR_INVALID_HANDLE;
// ERROR_FILE_NOT_FOUND below the other predefined keys, which are empty natively.
LSTATUS LocateKey(HKEY key, LPCWSTR subkey, WideText &path)
{
    if (key == HKEY_CLASSES_ROOT || key == HKEY_LOCAL_MACHINE)
    {
        return ERROR_FILE_NOT_FOUND;
    }
    path.clear();
    if (key != HKEY_CURRENT_USER)
    {
        const std::lock_guard guard(tableLock);
        const auto found = Table().find(key);
        if (found == Table().end())
        {
            return ERROR_INVALID_HANDLE;
        }
        path = found->second;
    }
    Append(path, subkey ? WideView(subkey) : WideView());
    return ERROR_SUCCESS;
}

// Calls body and returns its result; no exception may leave a function of the API.
template <class Body>
LSTATUS WithoutExceptions(Body &&body) noexcept
{
    try
    {
        return body();
    }
    catch (...)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

// Calls body with the key, null if it holds nothing.
template <class Body>
LSTATUS ReadKey(HKEY key, Body &&body)
{
    WideText path;
    const LSTATUS located = LocateKey(key, nullptr, path);
    return located != ERROR_SUCCESS
               ? located
               : RegistryDatabase::Instance().Read([&](const RegistryContent &content) -> LSTATUS {
                     return content.Has(path) ? body(content.Find(path)) : ERROR_KEY_DELETED;
                 });
}

template <class Body>
LSTATUS WriteKey(HKEY key, Body &&body)
{
    WideText path;
    const LSTATUS located = LocateKey(key, nullptr, path);
    return located != ERROR_SUCCESS ? located
                                    : RegistryDatabase::Instance().Write([&](RegistryContent &content) -> LSTATUS {
                                          return content.Has(path) ? body(content.Make(path)) : ERROR_KEY_DELETED;
                                      });
}

// data may be null to ask for the size alone.
LSTATUS HandOut(const RegistryValue &value, LPDWORD type, LPBYTE data, LPDWORD size)
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
    if (data != nullptr && fits)
    {
        std::ranges::copy(value.data, data);
    }
    return fits ? ERROR_SUCCESS : ERROR_MORE_DATA;
}

WideView NameOf(LPCWSTR name)
{
    return name ? WideView(name) : WideView();
}
} // namespace

LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subkey, DWORD, REGSAM, PHKEY opened)
{
    if (opened == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *opened = nullptr;
    return WithoutExceptions([&] {
        WideText path;
        LSTATUS result = LocateKey(key, subkey, path);
        result = result == ERROR_SUCCESS ? Exists(path) : result;
        *opened = result == ERROR_SUCCESS ? OpenHandle(path) : nullptr;
        return result;
    });
}

LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subkey, DWORD reserved, LPWSTR, DWORD, REGSAM,
                               LPSECURITY_ATTRIBUTES, PHKEY opened, LPDWORD disposition)
{
    if (opened == nullptr || subkey == nullptr || reserved != 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *opened = nullptr;
    return WithoutExceptions([&] {
        WideText path;
        LSTATUS result = LocateKey(key, subkey, path);
        result = result == ERROR_SUCCESS ? Exists(path) : result;
        const bool isNew = result == ERROR_FILE_NOT_FOUND;
        if (isNew)
        {
            result = RegistryDatabase::Instance().Write([&](RegistryContent &content) {
                content.Make(path);
                return ERROR_SUCCESS;
            });
        }
        *opened = result == ERROR_SUCCESS ? OpenHandle(path) : nullptr;
        if (result == ERROR_SUCCESS && disposition != nullptr)
        {
            *disposition = isNew ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
        }
        return result;
    });
}

LSTATUS WINAPI RegCloseKey(HKEY key)
{
    const std::lock_guard guard(tableLock);
    return Table().erase(key) != 0 ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subkey)
{
    if (subkey == nullptr || *subkey == 0)
    {
        return ERROR_INVALID_PARAMETER;
    }
    return WithoutExceptions([&] {
        WideText path;
        LSTATUS result = LocateKey(key, subkey, path);
        result = result == ERROR_SUCCESS ? Exists(path) : result;
        return result != ERROR_SUCCESS
                   ? result
                   : RegistryDatabase::Instance().Write([&](RegistryContent &content) -> LSTATUS {
                         if (content.HasBelow(path))
                         {
                             return ERROR_ACCESS_DENIED;
                         }
                         content.Delete(path);
                         return ERROR_SUCCESS;
                     });
    });
}

LSTATUS WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    if (reserved != nullptr || (data != nullptr && size == nullptr))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return WithoutExceptions([&] {
        return ReadKey(key, [&](const RegistryKey *found) -> LSTATUS {
            const RegistryValue *const value = found ? found->FindValue(NameOf(name)) : nullptr;
            return value ? HandOut(*value, type, data, size) : ERROR_FILE_NOT_FOUND;
        });
    });
}

LSTATUS WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE *data, DWORD size)
{
    if (reserved != 0 || (data == nullptr && size != 0))
    {
        return ERROR_INVALID_PARAMETER;
    }
    return WithoutExceptions([&] {
        RegistryValue wanted{WideText(NameOf(name)), type, std::vector<BYTE>(data, data + size)};
        // If the value is stored already, the file isn't replaced.
        const LSTATUS stored = ReadKey(key, [&](const RegistryKey *found) -> LSTATUS {
            const RegistryValue *const value = found ? found->FindValue(wanted.name) : nullptr;
            return value && value->type == type && value->data == wanted.data ? ERROR_SUCCESS
                                                                              : ERROR_FILE_NOT_FOUND;
        });
        return stored != ERROR_FILE_NOT_FOUND ? stored : WriteKey(key, [&](RegistryKey &found) {
            found.SetValue(std::move(wanted));
            return ERROR_SUCCESS;
        });
    });
}

LSTATUS WINAPI RegDeleteValueW(HKEY key, LPCWSTR name)
{
    return WithoutExceptions([&] {
        return WriteKey(key, [&](RegistryKey &found) -> LSTATUS {
            return found.DeleteValue(NameOf(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
        });
    });
}
