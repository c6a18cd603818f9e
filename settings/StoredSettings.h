// The tables of all values under the settings key: name, type, range, default, and the meaning in words. The
// plug-in and the host both use them, so that they agree.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <span>
#include <vector>

// Below HKEY_CURRENT_USER. The plug-in only ever opens the key; the host creates it.
inline constexpr const WCHAR *SettingsKeyPath =
    TEXT("SOFTWARE\\TRNQ\\Halvora\\Publishing\\Plugins\\{46519402-3380-4D48-BC76-63FFAA27165C}");

// The values of the setting JPEGMode.
enum UploadMode : UINT32
{
    SendAsIs = 0,
    SendPixelsIntact = 1,
    SendProcessed = 2
};

// What is kept of pictures of one kind of file when they are prepared for upload. Switches are 0 or 1.
struct ConversionSettings
{
    UINT32 Minimize = 0;
    UINT32 WriteCopyright = 0;
    UINT32 WriteEXIF = 0;
    UINT32 WriteXMP = 0;
    UINT32 WriteGPS = 0;
    UINT32 WriteIPTC = 0;
    UINT32 LongEdgePixels = 0; // 0: keep the size
    double PrintDpi = 0;
};

// A switch that JPEG files and RAW and TIFF files each have.
struct ConversionSwitch
{
    const WCHAR *Name; // in the store, after "JPEG" or "RAW"
    UINT32 ConversionSettings::*Member;
    UINT32 Default;
    UINT ControlId;       // of its check box, on both pages
    UINT WordId;          // in the state line; 0: none
    const WCHAR *Meaning; // English; not shown by the plug-in itself
};

std::span<const ConversionSwitch> ConversionSwitches() noexcept;

struct StoredSetting
{
    WideText Name;
    DWORD Type;       // REG_DWORD, or REG_SZ for an output size expression
    UINT32 Largest;   // of a REG_DWORD; the smallest is 0
    UINT32 Default;   // of a REG_DWORD, at upload and in the state line
    WideText Meaning; // English; not shown by the plug-in itself
};

// All settings, the conversion switches of both kinds of file among them. Throws E_OUTOFMEMORY at the first call.
const std::vector<StoredSetting> &StoredSettings();

// The entry with exactly that name, or null.
const StoredSetting *FindStoredSetting(WideView name);
