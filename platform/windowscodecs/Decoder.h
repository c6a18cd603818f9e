// A decoder that only names a picture's container format, which it recognises by the first bytes. JPEG has
// a full decoder (jpeg/JpegDecoder.cpp); of all other formats the product asks no more than the name, and
// every other operation answers E_NOTIMPL.
#pragma once

#include <windows.h>
#include <wincodec.h>

// Gives a decoder with one reference, or null and the failure's code: WINCODEC_ERR_COMPONENTNOTFOUND
// if no container format fits, an empty stream included; a stream that can't be read gives its own
// failure. Reads the first bytes from where the stream stands.
HRESULT CreateDecoderOf(IStream *stream, IWICBitmapDecoder **decoder) noexcept;
