#include "platform/windowscodecs/Codecs.h"

#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"

#include <string_view>

using namespace std::string_view_literals;

namespace
{
struct Signature
{
    std::string_view start;
    const GUID *format;
    // What must follow, and its offset in the file.
    size_t offset = 0;
    std::string_view further = {};
};

// A DNG file begins like any TIFF file and counts as one.
const Signature Signatures[] = {
    {"\xFF\xD8\xFF"sv, &GUID_ContainerFormatJpeg},
    {"\x89PNG\r\n\x1A\n"sv, &GUID_ContainerFormatPng},
    {"GIF87a"sv, &GUID_ContainerFormatGif},
    {"GIF89a"sv, &GUID_ContainerFormatGif},
    {"II\x2A\0"sv, &GUID_ContainerFormatTiff},
    {"MM\0\x2A"sv, &GUID_ContainerFormatTiff},
    {"BM"sv, &GUID_ContainerFormatBmp},
    {"RIFF"sv, &GUID_ContainerFormatWebp, 8, "WEBP"sv},
};

// As many bytes as the longest signature looks at.
constexpr ULONG SignatureLength = 12;

// Null for a format that isn't known.
const GUID *RecogniseContainer(std::string_view bytes)
{
    for (const Signature &signature : Signatures)
    {
        if (bytes.starts_with(signature.start) && bytes.size() >= signature.offset &&
            bytes.substr(signature.offset).starts_with(signature.further))
        {
            return signature.format;
        }
    }
    return nullptr;
}

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
ULONG ReadHead(IStream *stream, char (&head)[SignatureLength])
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
        char head[SignatureLength];
        const GUID *const format = RecogniseContainer({head, ReadHead(stream, head)});
        if (format == nullptr)
        {
            ThrowHresult(WINCODEC_ERR_COMPONENTNOTFOUND);
        }
        *decoder = CDecoder::Make(*format).Detach();
        return S_OK;
    });
}
