// The encoder: one frame into one stream, written from where the stream stands. Its calls come in their usual order,
// which isn't checked.
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
            ComPtr<IPropertyBag2> bag = options != nullptr ? MakeOptionBag() : nullptr;
            *frame = ComPtr<IWICBitmapFrameEncode>(CJpegFrameEncode::Make(m_stream)).Detach();
            if (options != nullptr)
            {
                *options = bag.Detach();
            }
            return S_OK;
        });
    }

    STDMETHODIMP Commit() noexcept override
    {
        m_stream->Commit(STGC_DEFAULT);
        return S_OK;
    }

private:
    ComPtr<IStream> m_stream;
};
} // namespace

HRESULT CreateJpegEncoder(IWICBitmapEncoder **encoder) noexcept
{
    return CJpegEncoder::CreateInstance(nullptr, __uuidof(IWICBitmapEncoder), reinterpret_cast<void **>(encoder));
}
