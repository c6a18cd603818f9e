#include "platform/windowscodecs/ImagingFactory.h"

#include "platform/windowscodecs/Decoder.h"

STDMETHODIMP CImagingFactory::CreateDecoderFromStream(IStream *stream, const GUID *, WICDecodeOptions,
                                                      IWICBitmapDecoder **decoder) noexcept
{
    if (decoder == nullptr)
    {
        return E_INVALIDARG;
    }
    *decoder = nullptr;
    return stream != nullptr ? CreateDecoderOf(stream, decoder) : E_INVALIDARG;
}
