// The part of a query's path behind "/app1", carried out on the EXIF block.
#pragma once

#include "platform/windowscodecs/jpeg/ExifBlock.h"
#include "platform/windowscodecs/jpeg/QueryPath.h"

#include <objidl.h>
#include <propidl.h>

#include <optional>
#include <span>

// Throws WINCODEC_ERR_PROPERTYNOTFOUND. A directory has no value.
void GetExif(const std::optional<ExifBlock> &block, std::span<const QueryItem> path, PROPVARIANT *value);

// Makes block and directory where they are missing. A wide text in the user's comment is stored as
// Unicode where it isn't ASCII. Throws WINCODEC_ERR_TOOMUCHMETADATA, with the block as it was, for a value that
// leaves no room in its segment.
void SetExif(std::optional<ExifBlock> &block, std::span<const QueryItem> path, const PROPVARIANT &value);

// Whether there was anything to remove. An empty path means the whole block.
bool RemoveExif(std::optional<ExifBlock> &block, std::span<const QueryItem> path);
