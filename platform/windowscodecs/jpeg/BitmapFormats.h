// The pixel formats that bitmaps and the encoder know, and the conversion between them.
#pragma once

#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <windows.h>
#include <wincodec.h>

#include <optional>

// Whole bytes only; 0 for a format that isn't known.
UINT BytesOfFormat(REFWICPixelFormatGUID format) noexcept;

REFWICPixelFormatGUID FormatOfLayout(PixelLayout layout) noexcept;
std::optional<PixelLayout> LayoutOfFormat(REFWICPixelFormatGUID format) noexcept;

// Converts one row; returns false if the format can't be converted to the layout. Alpha is dropped; CMYK
// becomes RGB by the plain rule, without a profile.
bool ConvertRow(REFWICPixelFormatGUID format, const BYTE *from, PixelLayout layout, BYTE *to, UINT width) noexcept;

// The part of a picture that a CopyPixels call asks for; all of it for null. Throws E_INVALIDARG for
// a part that isn't inside or a stride that is too short, WINCODEC_ERR_INSUFFICIENTBUFFER.
WICRect CheckCopyRequest(const WICRect *wanted, UINT width, UINT height, UINT bytesPerPixel, UINT stride,
                         UINT bufferSize);
