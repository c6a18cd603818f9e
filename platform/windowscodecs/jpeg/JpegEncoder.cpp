// The encoder: one frame into one stream, written from where the stream stands.
#include "com/ComObject.h"
#include "platform/windowscodecs/jpeg/EncoderOptions.h"
#include "platform/windowscodecs/jpeg/JpegCodec.h"
#include "platform/windowscodecs/jpeg/JpegFrameEncode.h"

namespace
{
class CJpegEncoder final : public ComObject<CJpegEncoder, IWICBitmapEncoder>
{
public:
    // Nothing is cached, whatever the option.
    STDMETHODIMP Initialize(IStream *stream, WICBitmapEncoderCacheOption) noexcept override
    {
        if (stream == nullptr)
        {
            return E_INVALIDARG;
        }
        if (m_stream)
        {
            return WINCODEC_ERR_WRONGSTATE;
        }
        m_stream = ComPtr<IStream>(stream);
        return S_OK;
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

    STDMETHODIMP GetEncoderInfo(IWICBitmapEncoderInfo **info) noexcept override
    {
        if (info == nullptr)
        {
            return E_INVALIDARG;
        }
        *info = nullptr;
        return WINCODEC_ERR_COMPONENTNOTFOUND;
    }

    // A JPEG file keeps profile, thumbnail and metadata with its frame, and has neither palette nor preview.
    STDMETHODIMP SetColorContexts(UINT, IWICColorContext **) noexcept override { return RefuseAtFile(); }
    STDMETHODIMP SetPalette(IWICPalette *) noexcept override { return RefuseAtFile(); }
    STDMETHODIMP SetThumbnail(IWICBitmapSource *) noexcept override { return RefuseAtFile(); }
    STDMETHODIMP SetPreview(IWICBitmapSource *) noexcept override { return RefuseAtFile(); }
    STDMETHODIMP GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) noexcept override
    {
        if (writer == nullptr)
        {
            return E_INVALIDARG;
        }
        *writer = nullptr;
        return RefuseAtFile();
    }

    STDMETHODIMP CreateNewFrame(IWICBitmapFrameEncode **frame, IPropertyBag2 **options) noexcept override
    {
        if (frame == nullptr)
        {
            return E_INVALIDARG;
        }
        *frame = nullptr;
        if (options != nullptr)
        {
            *options = nullptr;
        }
        return AtBoundary([&] {
            if (!m_stream)
            {
                return WINCODEC_ERR_NOTINITIALIZED;
            }
            if (m_frame || m_committed)
            {
                return WINCODEC_ERR_WRONGSTATE;
            }
            ComPtr<IPropertyBag2> bag = options != nullptr ? MakeOptionBag() : nullptr;
            m_frame = CJpegFrameEncode::Make(m_stream);
            *frame = ComPtr<IWICBitmapFrameEncode>(m_frame).Detach();
            if (options != nullptr)
            {
                *options = bag.Detach();
            }
            return S_OK;
        });
    }

    STDMETHODIMP Commit() noexcept override
    {
        if (!m_stream)
        {
            return WINCODEC_ERR_NOTINITIALIZED;
        }
        if (!m_frame || !m_frame->IsCommitted() || m_committed)
        {
            return WINCODEC_ERR_WRONGSTATE;
        }
        m_committed = true;
        m_frame.Reset();
        m_stream->Commit(STGC_DEFAULT);
        return S_OK;
    }

private:
    HRESULT RefuseAtFile() const noexcept
    {
        return m_stream ? WINCODEC_ERR_UNSUPPORTEDOPERATION : WINCODEC_ERR_NOTINITIALIZED;
    }

    ComPtr<IStream> m_stream;
    ComPtr<CJpegFrameEncode> m_frame;
    bool m_committed = false;
};
} // namespace

HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept
{
    return CJpegEncoder::CreateInstance(nullptr, __uuidof(IWICBitmapEncoder), reinterpret_cast<void **>(encoder));
}
