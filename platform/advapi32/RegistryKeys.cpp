// Opening, making and deleting keys.
#include "platform/advapi32/RegistryKeys.h"

#include "platform/advapi32/RegistryDatabase.h"

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
} // namespace

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
