// The decoder: recognises a JPEG and gives its one frame.
#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/Codecs.h"
#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"

namespace
{
class CJpegDecoder final : public UncalledOfDecoder<ComObject<CJpegDecoder, IWICBitmapDecoder>>
{
public:
    // The picture begins where the stream stands. Metadata is read when it is asked for, whatever the
    // option.
    STDMETHODIMP Initialize(IStream *stream, WICDecodeOptions) noexcept override
    {
        if (stream == nullptr)
        {
            return E_INVALIDARG;
        }
        return AtBoundary([&] {
            const ULONGLONG base = PositionOf(stream);
            StreamBytes bytes(ComPtr<IStream>(stream), base);
            m_structure = ReadStructure(bytes);
            m_base = base;
            m_stream = ComPtr<IStream>(stream);
            return S_OK;
        });
    }

    STDMETHODIMP GetContainerFormat(GUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = GUID_ContainerFormatJpeg;
        return S_OK;
    }

    // There is one, whatever the index, of a decoder that was initialized.
    STDMETHODIMP GetFrame(UINT, IWICBitmapFrameDecode **frame) noexcept override
    {
        if (frame == nullptr)
        {
            return E_INVALIDARG;
        }
        *frame = nullptr;
        return AtBoundary([&] {
            *frame = CJpegFrameDecode::Make(m_stream, m_base, m_structure).Detach();
            return S_OK;
        });
    }

private:
    static ULONGLONG PositionOf(IStream *stream)
    {
        ULARGE_INTEGER position{};
        ThrowIfFailed(stream->Seek({}, STREAM_SEEK_CUR, &position));
        return position.QuadPart;
    }

    ComPtr<IStream> m_stream;
    ULONGLONG m_base = 0;
    JpegStructure m_structure;
};
} // namespace

HRESULT CreateJpegDecoder(IWICBitmapDecoder **decoder) noexcept
{
    return CJpegDecoder::CreateInstance(nullptr, __uuidof(IWICBitmapDecoder), reinterpret_cast<void **>(decoder));
}
