#include "platform/windowscodecs/jpeg/MetadataBlockAccess.h"

#include "com/ComObject.h"
#include "jpegdata/JpegMarkers.h"

#include <cstring>

namespace
{
std::vector<OutputSegment> SegmentsOf(const MetadataBlocks &blocks)
{
    std::vector<OutputSegment> segments;
    blocks.AppendSegments(segments);
    return segments;
}

GUID FormatOf(const OutputSegment &segment) noexcept
{
    switch (segment.Marker)
    {
    case MARKER_APP1:
        return BeginsWith(segment.Contents, "Exif")     ? GUID_MetadataFormatApp1
               : XmpBlock::Recognises(segment.Contents) ? GUID_MetadataFormatXMP
                                                        : GUID_MetadataFormatUnknown;
    case MARKER_APP13:
        return GUID_MetadataFormatApp13;
    case MARKER_COM:
        return GUID_MetadataFormatJpegComment;
    default:
        return GUID_MetadataFormatUnknown;
    }
}

class CBlockReader final : public ComObject<CBlockReader, IWICMetadataReader>
{
public:
    explicit CBlockReader(OutputSegment segment) : m_segment(std::move(segment)) {}

    STDMETHODIMP GetMetadataFormat(GUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = FormatOf(m_segment);
        return S_OK;
    }

    STDMETHODIMP GetMetadataHandlerInfo(IWICMetadataHandlerInfo **info) noexcept override
    {
        if (info == nullptr)
        {
            return E_INVALIDARG;
        }
        *info = nullptr;
        return WINCODEC_ERR_COMPONENTNOTFOUND;
    }

    STDMETHODIMP GetCount(UINT *count) noexcept override
    {
        if (count == nullptr)
        {
            return E_INVALIDARG;
        }
        *count = 1;
        return S_OK;
    }

    STDMETHODIMP GetValueByIndex(UINT index, PROPVARIANT *schema, PROPVARIANT *id,
                                 PROPVARIANT *value) noexcept override
    {
        if (index != 0)
        {
            return E_INVALIDARG;
        }
        for (PROPVARIANT *cleared : {schema, id, value})
        {
            if (cleared != nullptr)
            {
                cleared->vt = VT_EMPTY;
            }
        }
        return value != nullptr ? GiveBytes(*value) : S_OK;
    }

    STDMETHODIMP GetValue(const PROPVARIANT *, const PROPVARIANT *, PROPVARIANT *) noexcept override
    {
        return WINCODEC_ERR_PROPERTYNOTFOUND;
    }

    STDMETHODIMP GetEnumerator(IWICEnumMetadataItem **enumerator) noexcept override
    {
        if (enumerator == nullptr)
        {
            return E_INVALIDARG;
        }
        *enumerator = nullptr;
        return WINCODEC_ERR_UNSUPPORTEDOPERATION;
    }

private:
    HRESULT GiveBytes(PROPVARIANT &value) noexcept
    {
        const size_t size = m_segment.Contents.size();
        value.blob.pBlobData = static_cast<BYTE *>(CoTaskMemAlloc(size));
        if (value.blob.pBlobData == nullptr)
        {
            return E_OUTOFMEMORY;
        }
        std::memcpy(value.blob.pBlobData, m_segment.Contents.data(), size);
        value.blob.cbSize = static_cast<ULONG>(size);
        value.vt = VT_BLOB;
        return S_OK;
    }

    OutputSegment m_segment;
};
} // namespace

UINT CountBlocks(const MetadataBlocks &blocks)
{
    return static_cast<UINT>(SegmentsOf(blocks).size());
}

ComPtr<IWICMetadataReader> MakeBlockReader(const MetadataBlocks &blocks, UINT index)
{
    std::vector<OutputSegment> segments = SegmentsOf(blocks);
    if (index >= segments.size())
    {
        ThrowHresult(E_INVALIDARG);
    }
    return CBlockReader::Make(std::move(segments[index]));
}
