// A raw file as a camera writes it, in Adobe's open format: uncompressed, one mosaic of red, green and blue.
#pragma once

#include <string>

// Four quarters: red, green above, blue, white below. The sensor's colours are sRGB's. orientation is EXIF's.
std::string MakeDng(unsigned width, unsigned height, unsigned short orientation);
