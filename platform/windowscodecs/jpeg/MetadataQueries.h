// The objects behind the metadata query interfaces, which read, set and remove metadata by paths. They work on blocks
// that belong to a frame, which they keep alive.
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

#include "com/ComPtr.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <wincodec.h>

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks);

ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks);
