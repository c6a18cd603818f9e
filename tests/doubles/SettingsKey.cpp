#include "tests/doubles/SettingsKey.h"

#include "com/HandleOwner.h"
#include "settings/StoredSettings.h"
#include "tests/doubles/CallRecord.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
constexpr UINT32 Mark = 77;
constexpr const WCHAR *MarkText = TEXT("untouched");

RegistryKeyOwner OpenKey()
{
    RegistryKeyOwner key;
    const LONG result = RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ | KEY_WRITE, key.Put());
    EXPECT_EQ(result, ERROR_SUCCESS);
    return key;
}

// As it lies in the key, with "?" behind what isn't of the setting's type or length.
std::string Stored(const RegistryKeyOwner &key, const StoredSetting &setting)
{
    WCHAR text[64] = {};
    DWORD type = 0;
    DWORD size = sizeof text;
    RegQueryValueExW(key.Get(), setting.Name.c_str(), nullptr, &type, reinterpret_cast<BYTE *>(text), &size);
    UINT32 number;
    std::memcpy(&number, text, sizeof number);
    const bool isNumber = setting.Type == REG_DWORD;
    const bool isWhole =
        type == setting.Type && size == (isNumber ? sizeof number : (WideView(text).size() + 1) * sizeof(WCHAR));
    return (isNumber ? std::to_string(number) : Narrow(text)) + (isWhole ? "" : "?");
}
} // namespace

SettingsKey::SettingsKey()
{
    UsePrivateRegistryStore();
    RemoveKey();
    RegistryKeyOwner key;
    const LONG result =
        RegCreateKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, nullptr, 0, KEY_WRITE, nullptr, key.Put(), nullptr);
    EXPECT_EQ(result, ERROR_SUCCESS);
}

SettingsKey::~SettingsKey()
{
    RemoveKey();
}

void SettingsKey::Set(const WCHAR *name, UINT32 value)
{
    const auto *bytes = reinterpret_cast<const BYTE *>(&value);
    SetBytes(name, REG_DWORD, std::vector<BYTE>(bytes, bytes + sizeof(value)));
}

void SettingsKey::Set(const WCHAR *name, const WCHAR *text)
{
    const auto *bytes = reinterpret_cast<const BYTE *>(text);
    SetBytes(name, REG_SZ, std::vector<BYTE>(bytes, bytes + (WideView(text).size() + 1) * sizeof(WCHAR)));
}

void SettingsKey::SetBytes(const WCHAR *name, DWORD type, const std::vector<BYTE> &bytes)
{
    const RegistryKeyOwner key = OpenKey();
    const LONG result = RegSetValueExW(key.Get(), name, 0, type, bytes.data(), static_cast<DWORD>(bytes.size()));
    EXPECT_EQ(result, ERROR_SUCCESS);
}

void SettingsKey::Remove(const WCHAR *name)
{
    const RegistryKeyOwner key = OpenKey();
    EXPECT_EQ(RegDeleteValueW(key.Get(), name), ERROR_SUCCESS);
}

void SettingsKey::MarkAll()
{
    for (const StoredSetting &setting : StoredSettings())
    {
        if (setting.Type == REG_DWORD)
        {
            Set(setting.Name.c_str(), Mark);
        }
        else
        {
            Set(setting.Name.c_str(), MarkText);
        }
    }
}

std::string SettingsKey::Written() const
{
    const RegistryKeyOwner key = OpenKey();
    std::string written;
    for (const StoredSetting &setting : StoredSettings())
    {
        const std::string value = Stored(key, setting);
        if (value != (setting.Type == REG_DWORD ? std::to_string(Mark) : Narrow(MarkText)))
        {
            written += (written.empty() ? "" : " ") + Narrow(setting.Name) + "=" + value;
        }
    }
    return written;
}

void SettingsKey::RemoveKey()
{
    RegDeleteKeyW(HKEY_CURRENT_USER, SettingsKeyPath);
}
