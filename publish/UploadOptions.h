// How one file is uploaded.
#pragma once

#include <windows.h>

// The numbers are the values of the setting JPEGMode.
enum UploadMode : UINT32
{
    SendAsIs = 0,
    SendPixelsIntact = 1,
    SendProcessed = 2
};

struct UploadOptions
{
    UINT32 Mode = SendAsIs;
    bool VerifyContainer = false; // SendAsIs: the file must really be JPEG, GIF or PNG
    bool Minimize = false;
    bool WriteCopyright = false;
    bool WriteExif = false;
    bool WriteXmp = false;
    bool WriteGps = false;
    bool WriteIptc = false;
    UINT32 LongEdgePixels = 0; // 0 keeps the size
    double PrintDpi = 0.0;
};
