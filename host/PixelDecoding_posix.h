// The pixels of one picture file, as DecodePicture gives them.
#pragma once

#include "host/PictureDecoding.h"
#include "host/PictureHeader_posix.h"

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
