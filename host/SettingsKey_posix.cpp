#include "host/SettingsKey_posix.h"

#include "host/DisplayText.h"
#include "host/SafeLine.h"
#include "host/TextEncodings.h"

#include "platform/advapi32/RegistryStore.h"

#include "com/HandleOwner.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace
{
// The value in words, or nothing if there is none of the setting's type.
std::optional<std::string> ReadStored(HKEY key, const StoredSetting &setting)
{
    WCHAR text[512];
    DWORD type = 0;
    DWORD size = sizeof(text) - sizeof(WCHAR);
    if (key == nullptr ||
        RegQueryValueExW(key, setting.Name, nullptr, &type, reinterpret_cast<BYTE *>(text), &size) !=
            ERROR_SUCCESS ||
        type != setting.Type)
    {
        return std::nullopt;
    }
    if (type == REG_DWORD)
    {
        DWORD number = 0;
        std::memcpy(&number, text, sizeof(number));
        return size == sizeof(number) ? std::optional(std::to_string(number)) : std::nullopt;
    }
    text[size / sizeof(WCHAR)] = 0;
    return Utf8FromText(WithoutPadding(text));
}

std::string DefaultOf(const StoredSetting &setting)
{
    return setting.Type == REG_DWORD ? std::to_string(setting.Default) : "Original";
}

LSTATUS StoreOne(HKEY key, const SettingAssignment &change)
{
    const WCHAR *const name = change.setting->Name;
    if (const auto *number = std::get_if<UINT32>(&change.value))
    {
        return RegSetValueExW(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE *>(number), sizeof(*number));
    }
    if (const auto *text = std::get_if<WideText>(&change.value))
    {
        return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text->c_str()),
                              static_cast<DWORD>((text->size() + 1) * sizeof(WCHAR)));
    }
    const LSTATUS status = RegDeleteValueW(key, name);
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}
} // namespace

std::string ListSettings()
{
    RegistryKeyOwner key;
    RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ, key.Put());
    size_t widest = 0;
    std::vector<std::pair<std::string, const StoredSetting *>> lines;
    for (const StoredSetting &setting : StoredSettings())
    {
        const auto stored = ReadStored(key.Get(), setting);
        lines.emplace_back(Utf8FromText(setting.Name) + "=" +
                               OneSafeLine(stored.value_or(DefaultOf(setting) + " (default)")),
                           &setting);
        widest = std::max(widest, DisplayWidth(lines.back().first));
    }
    std::string list;
    for (const auto &[assignment, setting] : lines)
    {
        list += assignment + std::string(widest - DisplayWidth(assignment) + 2, ' ') +
                Utf8FromText(setting->Meaning) + "\n";
    }
    return list;
}

HRESULT StoreSettings(const std::vector<SettingAssignment> &changes)
{
    RegistryStoreBatch batch;
    RegistryKeyOwner key;
    LSTATUS status = RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ | KEY_WRITE, key.Put());
    for (size_t i = 0; status == ERROR_SUCCESS && i < changes.size(); ++i)
    {
        status = StoreOne(key.Get(), changes[i]);
    }
    return HRESULT_FROM_WIN32(status == ERROR_SUCCESS ? batch.Commit() : status);
}
