// A JPEG file on disk, opened with a decoder of choice.
#pragma once

#include "com/ComPtr.h"

#include <windows.h>
#include <wincodec.h>

// The file's first frame; it keeps of file and decoder what it needs. The file is shared with readers.
// Throws the code of the call that failed: WINCODEC_ERR_BADHEADER for a file that is no JPEG.
ComPtr<IWICBitmapFrameDecode> OpenJpegFrame(IWICImagingFactory *factory, const WCHAR *path,
                                            const GUID &decoderVendor);
