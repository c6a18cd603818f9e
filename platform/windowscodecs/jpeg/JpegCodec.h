// The JPEG half of the imaging component, as its factory sees it. Each function gives an object with
// one reference, or null and the failure's code; no type of a third-party library appears here.
#pragma once

#include <windows.h>
#include <wincodec.h>

HRESULT CreateJpegDecoder(IWICBitmapDecoder **decoder) noexcept;
HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept;
HRESULT CreateColorContext(IWICColorContext **context) noexcept;
