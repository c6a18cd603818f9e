#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"

#include "platform/windowscodecs/jpeg/BitmapFormats.h"
#include "platform/windowscodecs/jpeg/MetadataBlockAccess.h"
#include "platform/windowscodecs/jpeg/MetadataQueryObject.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr double DefaultDpi = 96;

// Enough for 24 megapixels at 4:2:0 in several scans; larger ones are not worth their memory.
constexpr ULONGLONG CheckedCoefficientBytes = 76 * 1024 * 1024;

// By the header's density on one axis; the default where there is none.
double JfifDpi(const JpegStructure &structure, WORD density) noexcept
{
    const WORD fewer = std::min(structure.DensityX, structure.DensityY);
    if (!structure.HasJfif || structure.DensityUnit > 2 || (structure.DensityUnit == 0 && fewer == 0))
    {
        return DefaultDpi;
    }
    return density * (structure.DensityUnit == 0 ? DefaultDpi / fewer : structure.DensityUnit == 1 ? 1 : 2.54);
}
} // namespace

CJpegFrameDecode::CJpegFrameDecode(ComPtr<IStream> stream, ULONGLONG base, JpegStructure structure)
    : m_stream(std::move(stream)), m_base(base), m_structure(std::move(structure))
{
}

PixelLayout CJpegFrameDecode::Layout() const noexcept
{
    const size_t components = m_structure.ComponentIds.size();
    return components == 1 ? PixelLayout::Gray8 : components == 3 ? PixelLayout::Bgr24 : PixelLayout::Cmyk32;
}

MetadataBlocks &CJpegFrameDecode::Metadata()
{
    if (!m_metadata)
    {
        auto blocks = std::make_unique<MetadataBlocks>();
        StreamBytes bytes = OpenBytes();
        blocks->Load(bytes, m_structure);
        m_metadata = std::move(blocks);
    }
    return *m_metadata;
}

HRESULT CJpegFrameDecode::GetSize(UINT *width, UINT *height) noexcept
{
    if (width == nullptr || height == nullptr)
    {
        return E_INVALIDARG;
    }
    *width = m_structure.Width;
    *height = m_structure.Height;
    return S_OK;
}

HRESULT CJpegFrameDecode::GetPixelFormat(WICPixelFormatGUID *format) noexcept
{
    if (format == nullptr)
    {
        return E_INVALIDARG;
    }
    *format = FormatOfLayout(Layout());
    return S_OK;
}

HRESULT CJpegFrameDecode::GetResolution(double *x, double *y) noexcept
{
    if (x == nullptr || y == nullptr)
    {
        return E_INVALIDARG;
    }
    *x = JfifDpi(m_structure, m_structure.DensityX);
    *y = JfifDpi(m_structure, m_structure.DensityY);
    // Unreadable metadata isn't this call's failure: what the JFIF header says holds then.
    AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        double exifX = 0;
        double exifY = 0;
        if (const auto &exif = Metadata().Exif; exif && exif->GetResolution(exifX, exifY))
        {
            *x = exifX;
            *y = exifY;
        }
        return S_OK;
    });
    return S_OK;
}

HRESULT CJpegFrameDecode::CopyPalette(IWICPalette *) noexcept
{
    return WINCODEC_ERR_PALETTEUNAVAILABLE;
}

HRESULT CJpegFrameDecode::CopyPixels(const WICRect *wanted, UINT stride, UINT size, BYTE *buffer) noexcept
{
    if (buffer == nullptr)
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] {
        const WICRect part =
            CheckCopyRequest(wanted, m_structure.Width, m_structure.Height, BytesPerPixel(Layout()), stride, size);
        const std::lock_guard guard(m_mutex);
        CopyRows(part, stride, buffer);
        return S_OK;
    });
}

void CJpegFrameDecode::CopyRows(const WICRect &part, UINT stride, BYTE *buffer)
{
    const UINT pixel = BytesPerPixel(Layout());
    const size_t wantedBytes = size_t{pixel} * static_cast<UINT>(part.Width);
    const UINT first = static_cast<UINT>(part.Y);
    std::unique_ptr<RowDecoder> rows = std::move(m_rows);
    if (!rows || rows->NextRow() > first)
    {
        rows = std::make_unique<RowDecoder>(m_stream, m_base);
    }
    rows->SkipTo(first);
    const bool whole = static_cast<UINT>(part.Width) == m_structure.Width;
    Bytes row(whole ? 0 : size_t{pixel} * m_structure.Width);
    for (INT y = 0; y < part.Height; ++y, buffer += stride)
    {
        rows->ReadRow(whole ? buffer : row.data());
        if (!whole)
        {
            std::memcpy(buffer, &row[size_t{pixel} * static_cast<UINT>(part.X)], wantedBytes);
        }
    }
    // Keep only a pass that can go on; any other would hold its memory for nothing.
    if (rows->NextRow() < m_structure.Height)
    {
        m_rows = std::move(rows);
    }
}

void CJpegFrameDecode::CheckPixels() const
{
    RowDecoder(m_stream, m_base).CheckAll(CheckedCoefficientBytes);
}

HRESULT CJpegFrameDecode::GetMetadataQueryReader(IWICMetadataQueryReader **reader) noexcept
{
    if (reader == nullptr)
    {
        return E_INVALIDARG;
    }
    *reader = nullptr;
    return AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        *reader =
            MakeQueryReader(ComPtr<IUnknown>(static_cast<IWICBitmapFrameDecode *>(this)), Metadata()).Detach();
        return S_OK;
    });
}

HRESULT CJpegFrameDecode::GetColorContexts(UINT count, IWICColorContext **contexts, UINT *actual) noexcept
{
    if (actual == nullptr || (count > 0 && (contexts == nullptr || contexts[0] == nullptr)))
    {
        return E_INVALIDARG;
    }
    *actual = 0;
    return AtBoundary([&] {
        StreamBytes bytes = OpenBytes();
        const Bytes profile = ReadColorProfile(bytes, m_structure);
        if (profile.empty())
        {
            return S_OK;
        }
        if (count > 0)
        {
            ThrowIfFailed(contexts[0]->InitializeFromMemory(profile.data(), static_cast<UINT>(profile.size())));
        }
        *actual = 1;
        return S_OK;
    });
}

HRESULT CJpegFrameDecode::GetThumbnail(IWICBitmapSource **thumbnail) noexcept
{
    if (thumbnail == nullptr)
    {
        return E_INVALIDARG;
    }
    *thumbnail = nullptr;
    return WINCODEC_ERR_CODECNOTHUMBNAIL;
}

HRESULT CJpegFrameDecode::GetContainerFormat(GUID *format) noexcept
{
    if (format == nullptr)
    {
        return E_INVALIDARG;
    }
    *format = GUID_ContainerFormatJpeg;
    return S_OK;
}

HRESULT CJpegFrameDecode::GetCount(UINT *count) noexcept
{
    if (count == nullptr)
    {
        return E_INVALIDARG;
    }
    *count = 0;
    return AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        *count = CountBlocks(Metadata());
        return S_OK;
    });
}

HRESULT CJpegFrameDecode::GetReaderByIndex(UINT index, IWICMetadataReader **reader) noexcept
{
    if (reader == nullptr)
    {
        return E_INVALIDARG;
    }
    *reader = nullptr;
    return AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        *reader = MakeBlockReader(Metadata(), index).Detach();
        return S_OK;
    });
}

HRESULT CJpegFrameDecode::GetEnumerator(IEnumUnknown **enumerator) noexcept
{
    if (enumerator == nullptr)
    {
        return E_INVALIDARG;
    }
    *enumerator = nullptr;
    return WINCODEC_ERR_UNSUPPORTEDOPERATION;
}
