// All metadata of a picture: the block writer copies it and the queries change it. Not part of it are the
// JFIF header, the colour profile and Adobe's marker, which belong to the coding, and what tells of
// further pictures behind the end of image.
#pragma once

#include "platform/windowscodecs/jpeg/ExifBlock.h"
#include "platform/windowscodecs/jpeg/JpegStructure.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"
#include "platform/windowscodecs/jpeg/TextMetadata.h"

#include <optional>
#include <vector>

class MetadataBlocks
{
public:
    std::optional<ExifBlock> Exif;
    TextMetadata Texts;
    std::vector<OutputSegment> Copied; // application segments and comments as they are, without EXIF

    // Replaces what is there by what the picture holds. A second EXIF block is left out. Throws
    // WINCODEC_ERR_TOOMUCHMETADATA above 16 MB, and holds nothing then.
    void Load(StreamBytes &source, const JpegStructure &structure);

    // What goes into the file, in the order of the file.
    void AppendSegments(std::vector<OutputSegment> &head) const;

private:
    void Clear();
    void Add(BYTE marker, Bytes contents);
};

// Whether the segment holds XMP, or a part of an extended packet.
bool IsXmp(const OutputSegment &segment) noexcept;

// The colour profile in the APP2 segments of a picture, put together; empty if there is none, if
// parts are missing, or if it is no valid profile.
Bytes ReadColorProfile(StreamBytes &source, const JpegStructure &structure);

// Cuts a profile into APP2 segments. Throws WINCODEC_ERR_TOOMUCHMETADATA for more than 255.
void AppendColorProfile(const Bytes &profile, std::vector<OutputSegment> &head);
