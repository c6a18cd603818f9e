// The JPEG half of the imaging component, as its factory sees it. Each function gives an object with
// one reference, or null and the failure's code; no type of a third-party library appears here.
#pragma once

#include <windows.h>
#include <wincodec.h>

HRESULT CreateJpegDecoder(IWICBitmapDecoder **decoder) noexcept;
HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept;
HRESULT CreateColorContext(IWICColorContext **context) noexcept;

// A bitmap with a copy of the caller's pixels and no resolution (0 by 0). Formats with whole bytes
// for a pixel only; others give WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT.
HRESULT CreateMemoryBitmap(UINT width, UINT height, REFWICPixelFormatGUID format, UINT stride, UINT size,
                           const BYTE *pixels, IWICBitmap **bitmap) noexcept;
