// What a PNG's own chunks can say beside the blocks that a JPEG has too.
#pragma once

#include <string>

// Adds the values of PngPlaces to a PNG, and exif, a block from its byte order mark on, as a chunk eXIf.
void AddPngChunks(std::string &file, const std::string &exif);
