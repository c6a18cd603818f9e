#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include "com/Hresult.h"
#include "platform/windowscodecs/jpeg/JpegMarkers.h"

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

void MetadataBlocks::Sort(BYTE marker, Bytes contents)
{
    if (BelongsToCoding(marker, contents))
    {
        return;
    }
    if (marker == MARKER_APP1 && BeginsWith(contents, "Exif\0"sv))
    {
        if (!Exif)
        {
            Exif = ExifBlock::Read(contents);
        }
    }
    else if (marker == MARKER_APP1 && XmpBlock::Recognises(contents))
    {
        Xmp.AddSegment(std::move(contents));
    }
    else if (marker == MARKER_APP13)
    {
        Photoshop.AddSegment(contents);
    }
    else if (marker == MARKER_COM)
    {
        Comments.emplace_back(contents.begin(), contents.end());
    }
    else
    {
        Others.push_back({marker, std::move(contents)});
    }
}

void MetadataBlocks::Clear() noexcept
{
    Exif.reset();
    Xmp.Clear();
    Photoshop.Clear();
    Comments.clear();
    Others.clear();
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
        Sort(place.Marker, ReadSegment(source, place));
    }
    Photoshop.Parse();
}

void MetadataBlocks::AppendSegments(std::vector<OutputSegment> &head) const
{
    if (Exif && !Exif->IsEmpty())
    {
        head.push_back({MARKER_APP1, Exif->Write()});
    }
    for (Bytes &segment : Xmp.Segments())
    {
        head.push_back({MARKER_APP1, std::move(segment)});
    }
    for (Bytes &segment : Photoshop.Segments())
    {
        head.push_back({MARKER_APP13, std::move(segment)});
    }
    head.insert(head.end(), Others.begin(), Others.end());
    for (const std::string &comment : Comments)
    {
        head.push_back({MARKER_COM, Bytes(comment.begin(), comment.end())});
    }
}
