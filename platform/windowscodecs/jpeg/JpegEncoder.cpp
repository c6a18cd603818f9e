// The encoder: one frame into one stream, written from where the stream stands.
#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/jpeg/EncoderOptions.h"
#include "platform/windowscodecs/Codecs.h"
#include "platform/windowscodecs/jpeg/JpegFrameEncode.h"

namespace
{
class CJpegEncoder final : public UncalledOfEncoder<ComObject<CJpegEncoder, IWICBitmapEncoder>>
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
    ComPtr<IStream> m_stream;
    ComPtr<CJpegFrameEncode> m_frame;
    bool m_committed = false;
};
} // namespace

HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept
{
    return CJpegEncoder::CreateInstance(nullptr, __uuidof(IWICBitmapEncoder), reinterpret_cast<void **>(encoder));
}
