// A decoded picture as the imaging component takes it.
#pragma once

#include "host/PictureDecoding.h"

#include "com/ComPtr.h"

#include <wincodec.h>

#include <memory>

// 24 bits per pixel in the order blue, green, red. The pixels live as long as the source.
ComPtr<IWICBitmapSource> MakePictureSource(std::shared_ptr<const DecodedPicture> picture);
