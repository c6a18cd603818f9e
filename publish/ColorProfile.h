// The colour profile of a JPEG on its way into a new one.
#pragma once

#include <windows.h>
#include <wincodec.h>

// Gives target the profile of the JPEG at sourcePath, of which source is the first frame. A decoder that
// is known to tell profiles well is asked first, source where that one isn't there or fails. Nothing that
// fails here is a failure of the picture: it goes without a profile then.
void CopyColorProfile(IWICImagingFactory *factory, const WCHAR *sourcePath, IWICBitmapFrameDecode *source,
                      IWICBitmapFrameEncode *target) noexcept;
