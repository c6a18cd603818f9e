// What the imaging component's factory creates. Each function gives an object with one reference, or null and the
// failure's code; no type of a third-party library appears here.
#pragma once

#include <windows.h>
#include <wincodec.h>

// The JPEG half, in jpeg/.
HRESULT CreateJpegDecoder(IWICBitmapDecoder **decoder) noexcept;
HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept;
HRESULT CreateColorContext(IWICColorContext **context) noexcept;

// A decoder that only names a picture's container format, which it recognises by the first bytes, read from where the
// stream stands. JPEG has the full decoder; of all other formats the product asks no more than the name, and every
// other operation answers E_NOTIMPL. WINCODEC_ERR_COMPONENTNOTFOUND if no container format fits, an empty stream
// included; a stream that can't be read gives its own failure.
HRESULT CreateDecoderOf(IStream *stream, IWICBitmapDecoder **decoder) noexcept;
