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
    UINT32 mode = SendAsIs;
    bool verifyContainer = false; // SendAsIs: the file must really be JPEG, GIF or PNG
    bool minimize = false;
    bool writeCopyright = false;
    bool writeExif = false;
    bool writeXmp = false;
    bool writeGps = false;
    bool writeIptc = false;
    UINT32 longEdgePixels = 0; // 0 keeps the size
    double printDpi = 0.0;
};
