#include "platform/windowscodecs/Decoder.h"

#include "com/ComObject.h"
#include "platform/windowscodecs/ContainerSignature.h"
#include "platform/windowscodecs/UncalledMethods.h"

namespace
{
class CDecoder final : public UncalledOfDecoder<ComObject<CDecoder, IWICBitmapDecoder>>
{
public:
    explicit CDecoder(REFGUID format) : m_format(format) {}

    STDMETHODIMP GetContainerFormat(GUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = m_format;
        return S_OK;
    }

    STDMETHODIMP Initialize(IStream *, WICDecodeOptions) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFrame(UINT, IWICBitmapFrameDecode **) noexcept override { return E_NOTIMPL; }

private:
    const GUID m_format;
};

// A stream may give less than it was asked for without being at its end.
ULONG ReadHead(IStream *stream, BYTE (&head)[SignatureLength])
{
    ULONG length = 0;
    while (length < SignatureLength)
    {
        ULONG read = 0;
        ThrowIfFailed(stream->Read(head + length, SignatureLength - length, &read));
        if (read == 0)
        {
            break;
        }
        length += read;
    }
    return length;
}
} // namespace

HRESULT CreateDecoderOf(IStream *stream, IWICBitmapDecoder **decoder) noexcept
{
    return AtBoundary([&] {
        BYTE head[SignatureLength];
        const GUID *const format = RecogniseContainer({head, ReadHead(stream, head)});
        if (format == nullptr)
        {
            ThrowHresult(WINCODEC_ERR_COMPONENTNOTFOUND);
        }
        *decoder = CDecoder::Make(*format).Detach();
        return S_OK;
    });
}
