// Reading, setting and removing metadata by the paths of the query interfaces.
//
//   /app1/ifd/{ushort=tag}                 a field of the EXIF block; exif, exif/interop or gps in front of it names its
//                                          directory. The only one of these that is read.
//   /xmp/prefix:property                   is set, in a new packet that takes the place of a copied one
//   /app13/irb/8bimiptc/iptc/{str=Caption} is set, in new records that take the place of all copied segments
//   /app1, /xmp, /app13                    are removed: the EXIF block, and all segments with XMP or of that number
//   /com, /app0 to /app15, /[1]app1        are removed: one comment or application segment, "[1]" means the second
//   /app1/thumb                            is never there, since thumbnails aren't copied
//
// Codes: WINCODEC_ERR_INVALIDQUERYREQUEST for any other path,
// WINCODEC_ERR_PROPERTYNOTFOUND, WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE for a value that can't be stored
// there, WINCODEC_ERR_TOOMUCHMETADATA for one that doesn't fit into its block's segment.
#pragma once

#include "com/WideText.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <objidl.h>
#include <propidl.h>

void GetMetadata(const MetadataBlocks &blocks, WideView path, PROPVARIANT *value);
void SetMetadata(MetadataBlocks &blocks, WideView path, const PROPVARIANT &value);
void RemoveMetadata(MetadataBlocks &blocks, WideView path);
