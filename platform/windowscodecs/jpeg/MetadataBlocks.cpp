#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"

#include <wincodec.h>

using namespace std::string_view_literals;

namespace
{
constexpr size_t MaxMetadataBytes = 16 * 1024 * 1024;

// Of the segment by which ISO 21496-1 tells that a gain map follows behind the picture.
constexpr auto GainMapSignature = "urn:iso:std:iso:ts:21496:-1\0"sv;

bool BelongsToCoding(BYTE marker, const Bytes &contents) noexcept
{
    return (marker == MARKER_APP0 && (BeginsWith(contents, "JFIF\0"sv) || BeginsWith(contents, "JFXX\0"sv))) ||
           (marker == MARKER_APP2 && (BeginsWith(contents, "ICC_PROFILE\0"sv) || BeginsWith(contents, "MPF\0"sv) ||
                                      BeginsWith(contents, GainMapSignature))) ||
           (marker == MARKER_APP14 && BeginsWith(contents, "Adobe"sv));
}
} // namespace

void MetadataBlocks::Add(BYTE marker, Bytes contents)
{
    const bool isExif = marker == MARKER_APP1 && BeginsWith(contents, "Exif\0"sv);
    if (isExif && !Exif)
    {
        Exif = ExifBlock::Read(contents);
    }
    else if (!isExif && !BelongsToCoding(marker, contents))
    {
        Copied.push_back({marker, std::move(contents)});
    }
}

void MetadataBlocks::Clear()
{
    Exif.reset();
    Texts.RemoveXmp();
    Texts.RemoveIptc();
    Copied.clear();
}

void MetadataBlocks::Load(StreamBytes &source, const JpegStructure &structure)
{
    Clear();
    size_t total = 0;
    for (const SegmentPlace &place : structure.Segments)
    {
        if (place.Marker == MARKER_APP2 || place.Marker == MARKER_APP0)
        {
            const Bytes start = ReadSegment(source, {place.Marker, std::min(place.Length, 16u), place.Offset});
            if (BelongsToCoding(place.Marker, start))
            {
                continue;
            }
        }
        total += place.Length;
        if (total > MaxMetadataBytes)
        {
            Clear();
            ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
        }
        Add(place.Marker, ReadSegment(source, place));
    }
}

void MetadataBlocks::AppendSegments(std::vector<OutputSegment> &head) const
{
    if (Exif && !Exif->IsEmpty())
    {
        head.push_back({MARKER_APP1, Exif->Write()});
    }
    Texts.AppendSegments(head);
    head.insert(head.end(), Copied.begin(), Copied.end());
}

bool IsXmp(const OutputSegment &segment) noexcept
{
    return segment.Marker == MARKER_APP1 &&
           (BeginsWith(segment.Contents, "http://ns.adobe.com/xap/1.0/\0"sv) ||
            BeginsWith(segment.Contents, "http://ns.adobe.com/xmp/extension/\0"sv));
}
