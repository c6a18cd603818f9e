// Reading of the metadata of picture files, and of a frame's by queries to the imaging component.
#pragma once

#include "host/ImageTexts.h"
#include "host/MetadataSnapshots.h"

#include <wincodec.h>

#include <filesystem>

// Reads the texts of a file without loading its pixels and, if groups isn't null, the fields of EXIF, GPS
// and XMP that are written again later. Any thread; readings wait for each other. On failure texts and
// groups are empty, and the result is the code of the file system's refusal,
// WINCODEC_ERR_UNKNOWNIMAGEFORMAT for a file of no known kind, or WINCODEC_ERR_BADMETADATAHEADER for
// blocks that can't be read. Damage within a block loses the damaged values and is no failure.
HRESULT ReadMetadata(const std::filesystem::path &file, ImageTexts &texts, MetadataSnapshot *groups) noexcept;

// Whether the system can read the metadata of JPEG files at all. Where it can't, a reading finds nothing,
// which is no failure.
bool CanReadMetadata() noexcept;

// Reads the texts and, if groups isn't null, the fields of EXIF, GPS and XMP that are written again later.
// What the component doesn't find or can't read counts as absent. The query paths are those of JPEG and TIFF
// files; other kinds that hold the same blocks use one or the other.
void ReadFrameMetadata(IWICMetadataQueryReader &reader, ImageTexts &texts, MetadataSnapshot *groups);

// EXIF's number, 1 to 8; 1 where there is none.
UINT16 ReadFrameOrientation(IWICMetadataQueryReader &reader);

// By IsAdobeRgb of ExifFields.h.
bool IsFrameInAdobeRgb(IWICMetadataQueryReader &reader);
