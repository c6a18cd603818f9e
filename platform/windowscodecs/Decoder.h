// The decoder of a picture whose container format is known from its signature. It tells the format;
// pictures are not decoded yet, and the operations that would need it answer E_NOTIMPL.
#pragma once

#include <windows.h>
#include <wincodec.h>

// Gives a decoder with one reference, or null and the failure's code: WINCODEC_ERR_COMPONENTNOTFOUND
// if no container format fits, an empty stream included; a stream that can't be read gives its own
// failure. Reads the first bytes from where the stream stands.
HRESULT CreateDecoderOf(IStream *stream, IWICBitmapDecoder **decoder) noexcept;
