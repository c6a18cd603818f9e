// The module's one class, the imaging component's factory: decoders on streams, the JPEG decoder and encoder, and colour
// contexts; and its exports.
#include <initguid.h>

#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "platform/windowscodecs/Codecs.h"
#include "platform/windowscodecs/UncalledMethods.h"

#include <cguid.h>

namespace
{
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

ClassFactory<CImagingFactory> imagingFactories;
} // namespace

extern "C"
{
    DECLSPEC_EXPORT HRESULT WINAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void **object)
    {
        if (object == nullptr)
        {
            return E_INVALIDARG;
        }
        *object = nullptr;
        return clsid == CLSID_WICImagingFactory ? imagingFactories.QueryInterface(iid, object)
                                                : CLASS_E_CLASSNOTAVAILABLE;
    }

    DECLSPEC_EXPORT HRESULT WINAPI DllCanUnloadNow()
    {
        return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
    }
}
