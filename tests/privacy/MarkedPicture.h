// Pictures that carry all the marked values.
#pragma once

#include <string>

enum class Contents
{
    JpegWithEverything,
    JpegWithExifAlone, // as a camera writes it, in its own byte order
    Tiff,              // EXIF, IPTC and XMP
    WebP,              // EXIF and XMP
    Heif,              // EXIF and XMP
    Png,               // EXIF twice, IPTC and XMP, and texts in chunks of their own
    Raw                // as TIFF, a camera's DNG
};

// With its dot, as the file is named.
const char *ExtensionOf(Contents contents);
std::string MakeMarkedPicture(Contents contents);
