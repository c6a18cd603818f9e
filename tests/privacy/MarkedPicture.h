// Pictures that carry all the marked values.
#pragma once

#include <string>

enum class Contents
{
    JpegWithEverything,
    JpegWithExifAlone,  // as a camera writes it, in its own byte order
    Tiff                // EXIF, IPTC and XMP
};

std::string MakeMarkedPicture(Contents contents);
