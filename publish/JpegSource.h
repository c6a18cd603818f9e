// Opens a JPEG file on disk with a chosen decoder.
#pragma once

#include "com/ComPtr.h"

#include <windows.h>
#include <wincodec.h>

// The file's first frame, which keeps file and decoder alive. The file is opened shared with readers.
// The failure of any call is thrown: WINCODEC_ERR_BADHEADER for a file that is no JPEG.
ComPtr<IWICBitmapFrameDecode> OpenJpegFrame(IWICImagingFactory *factory, const WCHAR *path,
                                            const GUID &decoderVendor);
