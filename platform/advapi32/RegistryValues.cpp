// Reading, setting and deleting values.
#include "platform/advapi32/RegistryDatabase.h"
#include "platform/advapi32/RegistryKeys.h"

#include <algorithm>

namespace
{
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
