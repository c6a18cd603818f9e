// The decoder: recognises a JPEG and gives its one frame.
#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/JpegCodec.h"
#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"

#include <optional>

namespace
{
class CJpegDecoder final : public ComObject<CJpegDecoder, IWICBitmapDecoder>
{
public:
    STDMETHODIMP QueryCapability(IStream *stream, DWORD *capability) noexcept override
    {
        if (stream == nullptr || capability == nullptr)
        {
            return E_INVALIDARG;
        }
        *capability = 0;
        return AtBoundary([&] {
            const ULONGLONG base = PositionOf(stream);
            StreamBytes bytes(ComPtr<IStream>(stream), base);
            ReadStructure(bytes);
            *capability =
                WICBitmapDecoderCapabilityCanDecodeAllImages | WICBitmapDecoderCapabilityCanEnumerateMetadata;
            LARGE_INTEGER back;
            back.QuadPart = static_cast<LONGLONG>(base);
            return stream->Seek(back, STREAM_SEEK_SET, nullptr);
        });
    }

    // The picture begins where the stream stands. Metadata is read when it is asked for, whatever the
    // option.
    STDMETHODIMP Initialize(IStream *stream, WICDecodeOptions) noexcept override
    {
        if (stream == nullptr)
        {
            return E_INVALIDARG;
        }
        return AtBoundary([&] {
            if (m_stream)
            {
                return WINCODEC_ERR_WRONGSTATE;
            }
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

    STDMETHODIMP GetDecoderInfo(IWICBitmapDecoderInfo **info) noexcept override
    {
        return Refuse(info, WINCODEC_ERR_COMPONENTNOTFOUND);
    }
    STDMETHODIMP CopyPalette(IWICPalette *) noexcept override { return WINCODEC_ERR_PALETTEUNAVAILABLE; }
    STDMETHODIMP GetMetadataQueryReader(IWICMetadataQueryReader **reader) noexcept override
    {
        return Refuse(reader, WINCODEC_ERR_UNSUPPORTEDOPERATION);
    }
    STDMETHODIMP GetPreview(IWICBitmapSource **preview) noexcept override
    {
        return Refuse(preview, WINCODEC_ERR_UNSUPPORTEDOPERATION);
    }
    STDMETHODIMP GetColorContexts(UINT, IWICColorContext **, UINT *actual) noexcept override
    {
        if (actual == nullptr)
        {
            return E_INVALIDARG;
        }
        *actual = 0;
        return WINCODEC_ERR_UNSUPPORTEDOPERATION;
    }
    STDMETHODIMP GetThumbnail(IWICBitmapSource **thumbnail) noexcept override
    {
        return Refuse(thumbnail, WINCODEC_ERR_CODECNOTHUMBNAIL);
    }

    STDMETHODIMP GetFrameCount(UINT *count) noexcept override
    {
        if (count == nullptr)
        {
            return E_INVALIDARG;
        }
        *count = m_stream ? 1 : 0;
        return S_OK;
    }

    STDMETHODIMP GetFrame(UINT index, IWICBitmapFrameDecode **frame) noexcept override
    {
        if (frame == nullptr)
        {
            return E_INVALIDARG;
        }
        *frame = nullptr;
        if (!m_stream)
        {
            return WINCODEC_ERR_FRAMEMISSING;
        }
        if (index != 0)
        {
            return E_INVALIDARG;
        }
        return AtBoundary([&] {
            *frame = CJpegFrameDecode::Make(m_stream, m_base, m_structure).Detach();
            return S_OK;
        });
    }

private:
    template <class T>
    static HRESULT Refuse(T **out, HRESULT code) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = nullptr;
        return code;
    }

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
