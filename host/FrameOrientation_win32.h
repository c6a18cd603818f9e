// The orientation of a file's pixels, and turning them upright.
#pragma once

#include "host/PictureDecoding.h"

#include <wincodec.h>

// EXIF's numbers, 1 to 8; 1 if the frame has none or its metadata can't be read.
UINT16 OrientationOfFrame(IWICBitmapFrameDecode &frame);

// The picture turned, so that its first row is what a user sees at the top.
DecodedPicture Upright(DecodedPicture picture, UINT16 orientation);
