#include "platform/windowscodecs/jpeg/JpegStructure.h"

#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"

#include <algorithm>
#include <cstring>

using namespace std::string_view_literals;

namespace
{
constexpr size_t MaxSegments = 16384;

WORD BigEndian16(const BYTE *at) noexcept
{
    return static_cast<WORD>(at[0] << 8 | at[1]);
}

void ReadFrame(JpegStructure &structure, BYTE marker, const Bytes &header)
{
    if (marker != MARKER_SOF0 && marker != MARKER_SOF1 && marker != MARKER_SOF2 && marker != MARKER_SOF9 &&
        marker != MARKER_SOF10)
    {
        ThrowHresult(WINCODEC_ERR_UNSUPPORTEDVERSION);
    }
    if (structure.FrameMarker != 0 || header.size() < 6 || header.size() < 6u + 3u * header[5])
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
    structure.FrameMarker = marker;
    structure.Height = BigEndian16(&header[1]);
    structure.Width = BigEndian16(&header[3]);
    const UINT components = header[5];
    if (header[0] != 8 || (components != 1 && components != 3 && components != 4))
    {
        ThrowHresult(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT);
    }
    if (structure.Width == 0 || structure.Height == 0)
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
    if (structure.Width > MaxJpegSide || structure.Height > MaxJpegSide)
    {
        ThrowHresult(WINCODEC_ERR_IMAGESIZEOUTOFRANGE);
    }
    for (UINT i = 0; i < components; ++i)
    {
        structure.ComponentIds.push_back(header[6 + 3 * i]);
    }
}

void NoteApplication(JpegStructure &structure, BYTE marker, const Bytes &start)
{
    if (marker == MARKER_APP0 && !structure.HasJfif && start.size() >= 14 && BeginsWith(start, "JFIF\0"sv))
    {
        structure.HasJfif = true;
        structure.DensityUnit = start[7];
        structure.DensityX = BigEndian16(&start[8]);
        structure.DensityY = BigEndian16(&start[10]);
    }
    else if (marker == MARKER_APP14 && start.size() >= 12 && BeginsWith(start, "Adobe"sv))
    {
        structure.HasAdobe = true;
        structure.AdobeTransform = start[11];
    }
}
} // namespace

bool BeginsWith(const Bytes &contents, std::string_view signature) noexcept
{
    return contents.size() >= signature.size() &&
           std::memcmp(contents.data(), signature.data(), signature.size()) == 0;
}

BYTE NextMarker(StreamBytes &source)
{
    for (;;)
    {
        int byte = source.Next();
        while (byte != 0xFF && byte >= 0)
        {
            byte = source.Next();
        }
        while (byte == 0xFF)
        {
            byte = source.Next();
        }
        if (byte < 0)
        {
            return 0;
        }
        if (byte != 0)
        {
            return static_cast<BYTE>(byte);
        }
    }
}

UINT ReadSegmentLength(StreamBytes &source)
{
    const int high = source.Next();
    const int low = source.Next();
    const int length = high << 8 | low;
    if (high < 0 || low < 0 || length < 2)
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
    return static_cast<UINT>(length - 2);
}

Bytes ReadSegment(StreamBytes &source, const SegmentPlace &place)
{
    Bytes contents(place.Length);
    source.Seek(place.Offset);
    if (source.Read(contents.data(), contents.size()) != contents.size())
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
    return contents;
}

JpegStructure ReadStructure(StreamBytes &source)
{
    source.Seek(0);
    BYTE start[3] = {};
    if (source.Read(start, 3) != 3 || start[0] != 0xFF || start[1] != MARKER_SOI || start[2] != 0xFF)
    {
        ThrowHresult(WINCODEC_ERR_BADHEADER);
    }
    source.Seek(2);
    JpegStructure structure;
    for (BYTE marker = NextMarker(source); marker != MARKER_SOS; marker = NextMarker(source))
    {
        if (marker == 0 || marker == MARKER_EOI)
        {
            ThrowHresult(WINCODEC_ERR_BADIMAGE);
        }
        if (marker == MARKER_TEM || (marker >= MARKER_RST0 && marker <= MARKER_SOI))
        {
            continue;
        }
        SegmentPlace place{marker, ReadSegmentLength(source), 0};
        place.Offset = source.Position();
        if (IsFrameHeader(marker))
        {
            ReadFrame(structure, marker, ReadSegment(source, place));
        }
        else if (IsApplication(marker) || marker == MARKER_COM)
        {
            if (structure.Segments.size() == MaxSegments)
            {
                ThrowHresult(WINCODEC_ERR_TOOMUCHMETADATA);
            }
            structure.Segments.push_back(place);
            NoteApplication(structure, marker,
                            ReadSegment(source, {marker, std::min(place.Length, 16u), place.Offset}));
        }
        source.Seek(place.Offset + place.Length);
    }
    if (structure.FrameMarker == 0)
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
    return structure;
}

// The rule that readers follow: a JFIF header settles it, then an Adobe marker's transform, then
// component identifiers that spell RGB.
bool JpegStructure::AllowsJfif() const noexcept
{
    if (ComponentIds.size() == 1)
    {
        return true;
    }
    if (ComponentIds.size() != 3)
    {
        return false;
    }
    if (HasJfif)
    {
        return true;
    }
    if (HasAdobe)
    {
        return AdobeTransform != 0;
    }
    return ComponentIds != Bytes{'R', 'G', 'B'};
}
