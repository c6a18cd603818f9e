// The part of a query's path behind "/app1", carried out on the EXIF block.
#pragma once

#include "platform/windowscodecs/jpeg/ExifBlock.h"
#include "platform/windowscodecs/jpeg/QueryPath.h"

#include <objidl.h>
#include <propidl.h>

#include <optional>

// False for a directory, which has no value of its own. Throws WINCODEC_ERR_PROPERTYNOTFOUND.
bool GetExif(const std::optional<ExifBlock> &block, const QueryItem *items, size_t count, PROPVARIANT *value);

// Makes block and directory where they are missing. A wide text in the user's comment is stored as
// Unicode, a plain one as ASCII. Throws WINCODEC_ERR_TOOMUCHMETADATA, with the block as it was, for a value that
// leaves no room in its segment.
void SetExif(std::optional<ExifBlock> &block, const QueryItem *items, size_t count, const PROPVARIANT &value);

// Whether there was anything to remove. Removing "/app1" or "/app1/ifd" takes the thumbnail along.
bool RemoveExif(std::optional<ExifBlock> &block, const QueryItem *items, size_t count);
