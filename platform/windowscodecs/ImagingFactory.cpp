#include "platform/windowscodecs/ImagingFactory.h"

#include "platform/windowscodecs/Codecs.h"

namespace
{
bool IsJpegOfMicrosoft(REFGUID container, const GUID *vendor) noexcept
{
    return container == GUID_ContainerFormatJpeg &&
           (vendor == nullptr || *vendor == GUID_NULL || *vendor == GUID_VendorMicrosoft);
}

// Null if the stream holds no JPEG whose head can be read; the stream then stands where it stood.
ComPtr<IWICBitmapDecoder> OpenJpeg(IStream *stream, WICDecodeOptions options) noexcept
{
    ULARGE_INTEGER position{};
    ComPtr<IWICBitmapDecoder> decoder;
    if (FAILED(stream->Seek({}, STREAM_SEEK_CUR, &position)) || FAILED(CreateJpegDecoder(decoder.Put())) ||
        SUCCEEDED(decoder->Initialize(stream, options)))
    {
        return decoder;
    }
    LARGE_INTEGER back;
    back.QuadPart = static_cast<LONGLONG>(position.QuadPart);
    stream->Seek(back, STREAM_SEEK_SET, nullptr);
    return nullptr;
}
} // namespace

// A JPEG too damaged to be decoded gets, as other formats do, a decoder that names its container.
STDMETHODIMP CImagingFactory::CreateDecoderFromStream(IStream *stream, const GUID *, WICDecodeOptions options,
                                                      IWICBitmapDecoder **decoder) noexcept
{
    if (decoder == nullptr)
    {
        return E_INVALIDARG;
    }
    *decoder = nullptr;
    if (stream == nullptr)
    {
        return E_INVALIDARG;
    }
    if (ComPtr<IWICBitmapDecoder> jpeg = OpenJpeg(stream, options))
    {
        *decoder = jpeg.Detach();
        return S_OK;
    }
    return CreateDecoderOf(stream, decoder);
}

STDMETHODIMP CImagingFactory::CreateDecoder(REFGUID container, const GUID *vendor,
                                            IWICBitmapDecoder **decoder) noexcept
{
    if (decoder == nullptr)
    {
        return E_INVALIDARG;
    }
    *decoder = nullptr;
    return IsJpegOfMicrosoft(container, vendor) ? CreateJpegDecoder(decoder) : WINCODEC_ERR_COMPONENTNOTFOUND;
}

STDMETHODIMP CImagingFactory::CreateEncoder(REFGUID container, const GUID *vendor,
                                            IWICBitmapEncoder **encoder) noexcept
{
    if (encoder == nullptr)
    {
        return E_INVALIDARG;
    }
    *encoder = nullptr;
    return IsJpegOfMicrosoft(container, vendor) ? CreateJpegEncoder(encoder) : WINCODEC_ERR_COMPONENTNOTFOUND;
}

STDMETHODIMP CImagingFactory::CreateColorContext(IWICColorContext **context) noexcept
{
    return context != nullptr ? ::CreateColorContext(context) : E_INVALIDARG;
}
