// Development of camera raw files.
#pragma once

#include "host/PictureDecoding.h"

#include <string_view>

// Whether files with this extension are camera raw; without the dot and without regard to case.
bool IsRawExtension(std::string_view extension);

// The sensor's picture with the camera's white balance: upright, in sRGB; red, green, blue in pixels.
// If longEdge allows, it comes in half the size, which takes a quarter of the time; the caller does all
// other scaling. Throws as DecodePicture does.
DecodedPicture DevelopRaw(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop);
