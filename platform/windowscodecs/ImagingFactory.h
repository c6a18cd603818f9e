// The imaging component's factory: decoders on streams, the JPEG decoder and encoder, and colour contexts.
#pragma once

#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"

class CImagingFactory final : public UncalledOfFactory<ComObject<CImagingFactory, IWICImagingFactory>>
{
public:
    STDMETHODIMP CreateDecoderFromStream(IStream *stream, const GUID *vendor, WICDecodeOptions options,
                                         IWICBitmapDecoder **decoder) noexcept override;

    // JPEG by no vendor or Microsoft; WINCODEC_ERR_COMPONENTNOTFOUND for everything else.
    STDMETHODIMP CreateDecoder(REFGUID container, const GUID *vendor,
                               IWICBitmapDecoder **decoder) noexcept override;
    STDMETHODIMP CreateEncoder(REFGUID container, const GUID *vendor,
                               IWICBitmapEncoder **encoder) noexcept override;
    STDMETHODIMP CreateColorContext(IWICColorContext **context) noexcept override;
};
