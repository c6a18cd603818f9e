#include "platform/windowscodecs/jpeg/JpegFrameEncode.h"

#include "jpegdata/JpegMarkers.h"
#include "platform/windowscodecs/jpeg/MetadataQueries.h"
#include "platform/windowscodecs/jpeg/ScanCopy.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr float StandardQuality = 0.9f;
constexpr double DefaultDpi = 96;

// Bytes of rows taken from a source at once: few calls, and little memory at any width.
constexpr UINT StripBytes = 1024 * 1024;

constexpr UINT PixelBytes = 3;

WORD JfifDensity(double dpi) noexcept
{
    return static_cast<WORD>(std::clamp(std::round(dpi), 1.0, 65535.0));
}

// JFIF 1.01 with dots per inch and no thumbnail.
OutputSegment JfifHeader(double x, double y)
{
    const WORD densityX = JfifDensity(x);
    const WORD densityY = JfifDensity(y);
    return {MARKER_APP0,
            {'J', 'F', 'I', 'F', 0, 1, 1, 1, static_cast<BYTE>(densityX >> 8), static_cast<BYTE>(densityX),
             static_cast<BYTE>(densityY >> 8), static_cast<BYTE>(densityY), 0, 0}};
}

// Version 100, no flags.
OutputSegment AdobeMarker(BYTE transform)
{
    return {MARKER_APP14, {'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0, transform}};
}
} // namespace

HRESULT CJpegFrameEncode::Initialize(IPropertyBag2 *options) noexcept
{
    return AtBoundary([&] {
        m_options = ReadOptions(options);
        return S_OK;
    });
}

HRESULT CJpegFrameEncode::SetSize(UINT width, UINT height) noexcept
{
    return AtBoundary([&] {
        if (width == 0 || height == 0)
        {
            return E_INVALIDARG;
        }
        if (width > MaxJpegSide || height > MaxJpegSide)
        {
            return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
        }
        m_width = width;
        m_height = height;
        return S_OK;
    });
}

HRESULT CJpegFrameEncode::SetResolution(double x, double y) noexcept
{
    return AtBoundary([&] {
        if (!(x > 0) || !(y > 0) || !std::isfinite(x) || !std::isfinite(y))
        {
            return E_INVALIDARG;
        }
        m_dpiX = x;
        m_dpiY = y;
        return S_OK;
    });
}

HRESULT CJpegFrameEncode::SetPixelFormat(WICPixelFormatGUID *format) noexcept
{
    if (format == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        *format = GUID_WICPixelFormat24bppBGR;
        return S_OK;
    });
}

// Takes the first profile; an EXIF colour space without one belongs to the metadata.
HRESULT CJpegFrameEncode::SetColorContexts(UINT count, IWICColorContext **contexts) noexcept
{
    return AtBoundary([&] {
        if (count > 0 && contexts == nullptr)
        {
            return E_INVALIDARG;
        }
        for (UINT i = 0; i < count; ++i)
        {
            WICColorContextType type = WICColorContextUninitialized;
            if (contexts[i] == nullptr || FAILED(contexts[i]->GetType(&type)) || type != WICColorContextProfile)
            {
                continue;
            }
            UINT size = 0;
            ThrowIfFailed(contexts[i]->GetProfileBytes(0, nullptr, &size));
            Bytes profile(size);
            ThrowIfFailed(contexts[i]->GetProfileBytes(size, profile.data(), &size));
            m_profile = std::move(profile);
            return S_OK;
        }
        return S_OK;
    });
}

// Resolution goes into the JFIF header and into an EXIF block alike; where there can't be a JFIF
// header, an EXIF block is made for it.
std::vector<OutputSegment> CJpegFrameEncode::Head(bool allowsJfif)
{
    std::vector<OutputSegment> head;
    if (allowsJfif)
    {
        head.push_back(JfifHeader(m_dpiX > 0 ? m_dpiX : DefaultDpi, m_dpiY > 0 ? m_dpiY : DefaultDpi));
    }
    if (m_dpiX > 0 && (m_metadata.Exif || !allowsJfif))
    {
        if (!m_metadata.Exif)
        {
            m_metadata.Exif.emplace();
        }
        m_metadata.Exif->SetResolution(m_dpiX, m_dpiY);
    }
    m_metadata.AppendSegments(head);
    AppendColorProfile(m_profile, head);
    return head;
}

void CJpegFrameEncode::CopyIntact(const IJpegFrameSource &source)
{
    const std::vector<ByteRange> unread = source.CheckPixels();
    const JpegStructure &structure = source.Structure();
    std::vector<OutputSegment> head = Head(structure.AllowsJfif());
    if (structure.HasAdobe)
    {
        head.push_back(AdobeMarker(structure.AdobeTransform));
    }
    StreamBytes bytes = source.OpenBytes();
    CopyScans(bytes, head, unread, m_stream.Get());
}

void CJpegFrameEncode::EncodeSource(IWICBitmapSource *source)
{
    WICPixelFormatGUID format{};
    ThrowIfFailed(source->GetPixelFormat(&format));
    if (format != GUID_WICPixelFormat24bppBGR)
    {
        ThrowHresult(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT);
    }
    const float quality = m_options.Quality.value_or(StandardQuality);
    RowEncoder encoder(m_stream, {m_width, m_height, std::max(1, static_cast<int>(std::lround(quality * 100))),
                                  m_options.Subsampling.value_or(WICJpegYCrCbSubsampling420), Head(true)});
    const UINT stride = (m_width * PixelBytes + 3) / 4 * 4;
    const UINT rows = std::clamp(StripBytes / stride, 1u, m_height);
    Bytes strip(size_t{stride} * rows);
    for (UINT y = 0; y < m_height; y += rows)
    {
        const UINT count = std::min(rows, m_height - y);
        const WICRect wanted = {0, static_cast<INT>(y), static_cast<INT>(m_width), static_cast<INT>(count)};
        ThrowIfFailed(source->CopyPixels(&wanted, stride, static_cast<UINT>(strip.size()), strip.data()));
        for (UINT row = 0; row < count; ++row)
        {
            encoder.WriteRow(&strip[size_t{stride} * row]);
        }
    }
    encoder.Finish();
}

// Only a whole source.
HRESULT CJpegFrameEncode::WriteSource(IWICBitmapSource *source, WICRect *part) noexcept
{
    if (source == nullptr || part != nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        UINT width = 0;
        UINT height = 0;
        ThrowIfFailed(source->GetSize(&width, &height));
        if (width != m_width || height != m_height)
        {
            return WINCODEC_ERR_SOURCERECTDOESNOTMATCHDIMENSIONS;
        }
        if (const auto frame = m_options.AreGiven() ? nullptr : QueryFor<IJpegFrameSource>(source))
        {
            CopyIntact(*frame.Get());
        }
        else
        {
            EncodeSource(source);
        }
        return S_OK;
    });
}

HRESULT CJpegFrameEncode::Commit() noexcept
{
    return S_OK;
}

HRESULT CJpegFrameEncode::GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) noexcept
{
    if (writer == nullptr)
    {
        return E_INVALIDARG;
    }
    *writer = nullptr;
    return AtBoundary([&] {
        const ComPtr<IUnknown> self(static_cast<IWICBitmapFrameEncode *>(this));
        *writer = MakeQueryWriter(self, m_metadata).Detach();
        return S_OK;
    });
}

HRESULT CJpegFrameEncode::InitializeFromBlockReader(IWICMetadataBlockReader *reader) noexcept
{
    if (reader == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const auto frame = QueryFor<IJpegFrameSource>(reader);
        if (!frame)
        {
            return WINCODEC_ERR_UNSUPPORTEDOPERATION;
        }
        StreamBytes bytes = frame->OpenBytes();
        m_metadata.Load(bytes, frame->Structure());
        return S_OK;
    });
}
