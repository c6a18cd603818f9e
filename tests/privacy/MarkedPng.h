// A PNG, and what its own chunks can say beside the blocks that a JPEG has too.
#pragma once

#include <string>

// Some pixels and nothing else.
std::string MakePlainPng();

// Adds the values of PngPlaces to a PNG, and exif, a block from its byte order mark on, as a chunk eXIf.
void AddPngChunks(std::string &file, const std::string &exif);
