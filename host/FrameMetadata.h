// Reading of a frame's metadata by queries to the imaging component.
#pragma once

#include "host/ImageTexts.h"
#include "host/MetadataSnapshots.h"

#include <wincodec.h>

// The texts, and if groups isn't null, what is to be written again of EXIF, GPS and XMP. What the component
// doesn't find or can't read counts as absent. Paths are those of JPEG and TIFF files; other kinds that
// hold the same blocks have them by one or the other name.
void ReadFrameMetadata(IWICMetadataQueryReader &reader, ImageTexts &texts, MetadataSnapshot *groups);

// EXIF's number, 1 to 8; 1 where there is none.
UINT16 ReadFrameOrientation(IWICMetadataQueryReader &reader);
