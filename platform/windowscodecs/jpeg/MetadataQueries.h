// Reading, setting and removing metadata by the paths of the query interfaces.
//
//   /app1/ifd            EXIF block; below it {ushort=tag}, exif, exif/interop, gps
//   /app1/thumb          the thumbnail's directory
//   /xmp                 the XMP packet; below it prefix:property, with {ulong=element}, a language or
//                        fields; "<xmpbag>", "<xmpseq>" and "<xmpalt>" say what a new one shall be
//   /app13               Photoshop's block; below it irb/8bimiptc/iptc/{str=Caption}
//   /com/TextEntry       the comment
//   /app0 to /app15      any other application segment; "[1]" before a name means the second one
//
// Removal goes further than the tags where the same data lies twice: with "/xmp" the copy in IFD0
// goes, with "/app13" those of the IPTC records and of Photoshop's resources.
//
// Codes: WINCODEC_ERR_INVALIDQUERYREQUEST for a path that means nothing,
// WINCODEC_ERR_PROPERTYNOTFOUND, WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE for a value that can't be stored
// there, and for a whole block given a value, WINCODEC_ERR_TOOMUCHMETADATA for one that doesn't fit into its
// block's segment.
#pragma once

#include "com/WideText.h"
#include "platform/windowscodecs/jpeg/MetadataBlocks.h"

#include <objidl.h>
#include <propidl.h>

// What Get answers for a whole block, which has no value of its own.
enum class QueryAnswer
{
    Value,
    Block
};

QueryAnswer GetMetadata(MetadataBlocks &blocks, WideView path, PROPVARIANT *value);
void SetMetadata(MetadataBlocks &blocks, WideView path, const PROPVARIANT &value);
void RemoveMetadata(MetadataBlocks &blocks, WideView path);
