// What the head of a JPEG file says, up to its first scan: the frame, and where its application and
// comment segments lie. Their contents stay in the stream until they are asked for.
#pragma once

#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <string_view>
#include <vector>

struct SegmentPlace
{
    BYTE Marker;
    UINT Length;      // of the contents, without marker and length word
    ULONGLONG Offset; // of the contents
};

struct JpegStructure
{
    UINT Width = 0;
    UINT Height = 0;
    BYTE FrameMarker = 0;
    Bytes ComponentIds;
    std::vector<SegmentPlace> Segments;

    bool HasJfif = false;
    BYTE DensityUnit = 0; // JFIF: 0 aspect ratio only, 1 per inch, 2 per centimetre
    WORD DensityX = 0;
    WORD DensityY = 0;

    bool HasAdobe = false;
    BYTE AdobeTransform = 0;

    // Whether readers take the file for YCbCr or gray, so that a JFIF header may be written; in any other
    // file it would change the meaning of the colours.
    bool AllowsJfif() const noexcept;
};

// Throws WINCODEC_ERR_BADHEADER for what doesn't begin as a JPEG does, WINCODEC_ERR_BADIMAGE for one
// that breaks off before its first scan or contradicts itself, WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT for
// samples of other than 8 bits and for 2 or more than 4 components, WINCODEC_ERR_UNSUPPORTEDVERSION
// for lossless and hierarchical files, WINCODEC_ERR_IMAGESIZEOUTOFRANGE for a side over MaxJpegSide,
// WINCODEC_ERR_TOOMUCHMETADATA for an absurd number of segments, and what the stream answers.
JpegStructure ReadStructure(StreamBytes &source);

// The next marker from here, past fill bytes and stray ones; 0 at the end of the stream.
BYTE NextMarker(StreamBytes &source);

// The length word's value less 2. Throws WINCODEC_ERR_BADIMAGE if it isn't there or below 2.
UINT ReadSegmentLength(StreamBytes &source);

Bytes ReadSegment(StreamBytes &source, const SegmentPlace &place);

// How the contents of a segment begin.
bool BeginsWith(const Bytes &contents, std::string_view signature) noexcept;
