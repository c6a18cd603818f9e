// The pixels of one picture file, as DecodePicture gives them, and the development of camera raw files.
#pragma once

#include "host/PictureDecoding.h"
#include "host/PictureHeader_posix.h"

#include <string_view>

// For what the decoder refuses a file.
enum class Refusal
{
    None, // it goes on, and invents what is missing
    Truncation,
    AnyWarning
};

// Throws as DecodePicture does.
DecodedPicture DecodePixels(const std::filesystem::path &file, UINT longEdge, const PictureHeader &header,
                            Refusal refusal, const std::atomic<bool> *stop);

// Of a picture in sRGB whose pixels are red, green, blue: scaled, and in the usual order.
DecodedPicture ScalePixels(DecodedPicture developed, UINT longEdge, const std::atomic<bool> *stop);

// Whether files with this extension are camera raw; without the dot and without regard to case.
bool IsRawExtension(std::string_view extension);

// The sensor's picture with the camera's white balance: upright, in sRGB; red, green, blue in pixels.
// If longEdge allows, it comes in half the size, which takes a quarter of the time; the caller does all
// other scaling. Throws as DecodePicture does.
DecodedPicture DevelopRaw(const std::filesystem::path &file, UINT longEdge, const std::atomic<bool> *stop);
