// The table of all values under the settings key: name, type, range, default, and the meaning in words. The
// plug-in and the host both use it, so that they agree.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <span>

// Below HKEY_CURRENT_USER. The plug-in only ever opens the key; the host creates it.
inline constexpr const WCHAR *SettingsKeyPath =
    TEXT("SOFTWARE\\TRNQ\\Halvora\\Publishing\\Plugins\\{46519402-3380-4D48-BC76-63FFAA27165C}");

struct StoredSetting
{
    const WCHAR *Name;
    DWORD Type;           // REG_DWORD, or REG_SZ for an output size expression
    UINT32 Largest;       // of a REG_DWORD; the smallest is 0
    UINT32 Default;       // of a REG_DWORD, at upload and in the state line
    const WCHAR *Meaning; // English; not shown by the plug-in itself
};

std::span<const StoredSetting> StoredSettings() noexcept;

// The entry with exactly that name, or null.
const StoredSetting *FindStoredSetting(WideView name) noexcept;
