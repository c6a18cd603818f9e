// The JPEG file that a new picture is made from: its frame, and its colour profile.
#pragma once

#include "com/ComPtr.h"

#include <windows.h>
#include <wincodec.h>

// The file's first frame, which keeps file and decoder alive. The file is opened shared with readers.
// The failure of any call is thrown: WINCODEC_ERR_BADHEADER for a file that is no JPEG.
ComPtr<IWICBitmapFrameDecode> OpenJpegFrame(IWICImagingFactory *factory, const WCHAR *path,
                                            const GUID &decoderVendor);

// Gives target the profile of the JPEG at sourcePath, whose first frame is source. A decoder of another
// vendor is asked for the profile first, and source where that decoder isn't installed or fails. Without
// either the picture is uploaded without a profile: no failure here fails the picture.
void CopyColorProfile(IWICImagingFactory *factory, const WCHAR *sourcePath, IWICBitmapFrameDecode *source,
                      IWICBitmapFrameEncode *target) noexcept;
