// The pixel formats that bitmaps and the encoder know, and the way from one to another.
#pragma once

#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <windows.h>
#include <wincodec.h>

#include <optional>

// Whole bytes only; 0 for a format that isn't known.
UINT BytesOfFormat(REFWICPixelFormatGUID format) noexcept;

REFWICPixelFormatGUID FormatOfLayout(PixelLayout layout) noexcept;
std::optional<PixelLayout> LayoutOfFormat(REFWICPixelFormatGUID format) noexcept;

// One row. False if there is no way from the format to the layout. Alpha is left out; ink becomes
// colour by the plain rule, without a profile.
bool ConvertRow(REFWICPixelFormatGUID format, const BYTE *from, PixelLayout layout, BYTE *to, UINT width) noexcept;

// The part of a picture that a CopyPixels call asks for; all of it for null. Throws E_INVALIDARG for
// a part that isn't inside or a stride that is too short, WINCODEC_ERR_INSUFFICIENTBUFFER.
WICRect CheckCopyRequest(const WICRect *wanted, UINT width, UINT height, UINT bytesPerPixel, UINT stride,
                         UINT bufferSize);
