// The reading half.
#include "tests/doubles/FakeImaging.h"

#include "platform/windowscodecs/UncalledMethods.h"

#include <wincodecsdk.h>

#include <string_view>

namespace
{
// A frame of a decoder or, with the name "picture", the picture of a host.
class Frame final
    : public UncalledOfFrameDecode<ComObject<Frame, Answers<IWICBitmapFrameDecode, IWICBitmapSource>>>
{
public:
    Frame(FakeImaging &imaging, std::string name, std::string prefix)
        : Name(std::move(name)), m_imaging(imaging), m_prefix(std::move(prefix))
    {
    }

    const std::string Name;

    HRESULT QueryFurther(REFIID iid, void **object) noexcept
    {
        if (iid != __uuidof(IWICMetadataBlockReader) || !m_imaging.HasBlocks)
        {
            return E_NOINTERFACE;
        }
        const HRESULT result = m_imaging.Calls.Enter(m_prefix + "BlockReader");
        return FAILED(result) ? result : MakeFakeBlocks(m_imaging, iid, object);
    }

    STDMETHODIMP GetSize(UINT *width, UINT *height) override
    {
        *width = m_imaging.Width;
        *height = m_imaging.Height;
        return m_imaging.Calls.Enter(m_prefix + "GetSize");
    }
    STDMETHODIMP GetResolution(double *x, double *y) override
    {
        *x = m_imaging.DpiX;
        *y = m_imaging.DpiY;
        return m_imaging.Calls.Enter(m_prefix + "GetResolution");
    }
    STDMETHODIMP GetColorContexts(UINT wanted, IWICColorContext **contexts, UINT *count) override
    {
        const bool isGiven = wanted == 1 && contexts != nullptr && contexts[0] != nullptr;
        const HRESULT result = m_imaging.Calls.Enter(m_prefix + "GetColorContexts", {isGiven ? "1" : "?"});
        *count = FAILED(result) ? 0 : Name == "frame" ? m_imaging.ProfileCount : m_imaging.OtherProfileCount;
        return result;
    }
    STDMETHODIMP GetMetadataQueryReader(IWICMetadataQueryReader **) override { return E_NOTIMPL; }

private:
    FakeImaging &m_imaging;
    const std::string m_prefix;
};

class Decoder final : public UncalledOfDecoder<ComObject<Decoder, IWICBitmapDecoder>>
{
public:
    Decoder(FakeImaging &imaging, std::string prefix, const GUID &format)
        : m_imaging(imaging), m_prefix(std::move(prefix)), m_format(format)
    {
    }

    STDMETHODIMP GetContainerFormat(GUID *format) override
    {
        *format = m_format;
        return m_imaging.Calls.Enter("Decoder.GetContainerFormat");
    }
    STDMETHODIMP Initialize(IStream *stream, WICDecodeOptions options) override
    {
        const HRESULT result = Enter("Initialize", std::to_string(options));
        if (FAILED(result))
        {
            return result;
        }
        const GUID *format = ContainerOf(stream);
        return format && *format == m_format ? S_OK : WINCODEC_ERR_BADHEADER;
    }
    STDMETHODIMP GetFrame(UINT index, IWICBitmapFrameDecode **frame) override
    {
        *frame = nullptr;
        const HRESULT result = Enter("GetFrame", std::to_string(index));
        if (SUCCEEDED(result))
        {
            const bool isOther = !m_prefix.empty();
            *frame =
                Frame::Make(m_imaging, isOther ? "other frame" : "frame", isOther ? "Other source." : "Source.")
                    .Detach();
        }
        return result;
    }

private:
    HRESULT Enter(const char *operation, const std::string &details)
    {
        return m_imaging.Calls.Enter((m_prefix.empty() ? "Decoder." : m_prefix + "decoder.") + operation,
                                     {details});
    }

    FakeImaging &m_imaging;
    const std::string m_prefix;
    const GUID m_format;
};
} // namespace

ComPtr<IWICBitmapDecoder> MakeFakeDecoder(FakeImaging &imaging, const std::string &prefix, const GUID &format)
{
    return Decoder::Make(imaging, prefix, format);
}

ComPtr<IWICBitmapSource> FakeImaging::MakePicture()
{
    return Frame::Make(*this, "picture", "Source.");
}

const GUID *ContainerOf(IStream *stream)
{
    char bytes[4] = {};
    ULONG read = 0;
    stream->Read(bytes, sizeof bytes, &read);
    const std::string_view head(bytes, read);
    if (head.starts_with("\xFF\xD8"))
    {
        return &GUID_ContainerFormatJpeg;
    }
    if (head.starts_with("GIF8"))
    {
        return &GUID_ContainerFormatGif;
    }
    if (head.starts_with("\x89PNG"))
    {
        return &GUID_ContainerFormatPng;
    }
    return head.starts_with("BM") ? &GUID_ContainerFormatBmp : nullptr;
}

std::string NameOfSource(IUnknown *source)
{
    const auto *frame = dynamic_cast<Frame *>(source);
    return frame ? frame->Name : "?";
}
