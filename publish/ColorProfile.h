// Carries the colour profile of a JPEG over into a new one.
#pragma once

#include <windows.h>
#include <wincodec.h>

// Gives target the profile of the JPEG at sourcePath, whose first frame is source. A decoder of another
// vendor is asked for the profile first, and source where that decoder isn't installed or fails. Without
// either the picture is uploaded without a profile: no failure here fails the picture.
void CopyColorProfile(IWICImagingFactory *factory, const WCHAR *sourcePath, IWICBitmapFrameDecode *source,
                      IWICBitmapFrameEncode *target) noexcept;
