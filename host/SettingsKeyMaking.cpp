#include "host/SettingsKeyMaking.h"

#include "settings/StoredSettings.h"

#include "com/HandleOwner.h"

HRESULT MakeSettingsKey()
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ, key.Put()) == ERROR_SUCCESS)
    {
        return S_OK;
    }
    return HRESULT_FROM_WIN32(RegCreateKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, nullptr, 0,
                                              KEY_READ | KEY_WRITE, nullptr, key.Put(), nullptr));
}
