// Reading of a frame's metadata by queries to the imaging component.
#pragma once

#include "host/ImageTexts.h"
#include "host/MetadataSnapshots.h"

#include <wincodec.h>

// Reads the texts and, if groups isn't null, the fields of EXIF, GPS and XMP that are written again later.
// What the component doesn't find or can't read counts as absent. The query paths are those of JPEG and TIFF
// files; other kinds that hold the same blocks use one or the other.
void ReadFrameMetadata(IWICMetadataQueryReader &reader, ImageTexts &texts, MetadataSnapshot *groups);

// EXIF's number, 1 to 8; 1 where there is none.
UINT16 ReadFrameOrientation(IWICMetadataQueryReader &reader);

// By IsAdobeRgb of ExifTags.h.
bool IsFrameInAdobeRgb(IWICMetadataQueryReader &reader);
