// How one file is uploaded.
#pragma once

#include "settings/StoredSettings.h"

#include <windows.h>

struct UploadOptions : ConversionSettings
{
    UINT32 Mode = SendAsIs;       // one of UploadMode
    bool VerifyContainer = false; // SendAsIs: the file must really be JPEG, GIF or PNG
};
