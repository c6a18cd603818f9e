// What a picture file says of itself, before its pixels are decoded.
#pragma once

#include "host/ColourProfile_posix.h"

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <optional>

struct PictureHeader
{
    double dpiX = 0;
    double dpiY = 0;
    UINT longEdge = 0;
    bool isJpeg = false;
    bool isInScans = false;
    // Of the file's profile, if its colours can be converted by it.
    std::optional<ProfileIntent> intent;
    // The library converts ink by a profile of its own, and cuts sixteen bits to eight, before it looks at the
    // file's profile; and WebP's decoder scales with a poor filter. Such pictures are loaded, then converted, then
    // scaled.
    bool goesByStep = false;
    bool isAdobeRgb = false; // by EXIF, of a file without a profile that fits
};

// Throws DecodingError, also for a file of no known kind and for a picture of more than MaxPicturePixels.
PictureHeader ReadPictureHeader(const std::filesystem::path &file);

// A thread's use of the library that decodes: each one leaves buffers of its own with it, freed at the end. Throws
// DecodingError if the library doesn't start.
class ImagingThread
{
public:
    ImagingThread();
    ~ImagingThread();
    ImagingThread(const ImagingThread &) = delete;
    ImagingThread &operator=(const ImagingThread &) = delete;
};

// What the library reported last in this process as a DecodingError; E_ABORT if stop is true.
[[noreturn]] void ThrowImagingError(const std::atomic<bool> *stop);
